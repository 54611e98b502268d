#pragma once

#include "ProfileData.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>

class ClientInterface;
class ClientTabWidget;
class QAction;
class QMenu;
class QProcess;
class QWidget;

/// The entries of a menu that make a profile of what is there: of this machine, which the launcher asks, and
/// of what the contexts of a client have told.
class NewProfileActions : public QObject {
    Q_OBJECT

public:
    /// Adds its actions in front of the entry of the menu. The tabs must live longer.
    NewProfileActions(const ClientTabWidget& clients, QMenu* menu, QAction* before);
    ~NewProfileActions() override;

Q_SIGNALS:
    /// A profile that is in no file.
    void made(const ProfileData& profile);
    /// Text that passes.
    void statusMessage(const QString& text);

private:
    void askMachine();
    void takeMachine(QProcess& launcher);
    void askClient();
    void showFailure(const QString& text, const QString& details);
    void updateActions();
    const ClientInterface* currentClient() const;

    const ClientTabWidget& m_clients;
    QWidget* m_window;
    QAction* m_ofMachine = nullptr;
    QAction* m_ofClient = nullptr;
    QPointer<QProcess> m_launcher; ///< While it asks.
    QByteArray m_answer;
};
