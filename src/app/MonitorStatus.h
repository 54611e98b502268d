#pragma once

#include "ProfileCatalogue.h"

#include <QObject>
#include <QTimer>

#include <vector>

class QAbstractItemModel;
class QLabel;
class QStatusBar;

/// The window's state at a glance, in its status bar: whether it listens, how many clients are connected, and
/// how many errors and warnings they have reported since the start. Counts that change in a flood are shown a
/// few times a second.
class MonitorStatus : public QObject {
    Q_OBJECT

public:
    explicit MonitorStatus(QStatusBar* bar);

    /// An empty problem means that the server listens, on the socket at the path.
    void setListening(const QString& path, const QString& problem);
    /// Why a second instance could not see this one; empty when it could.
    void setInstanceProblem(const QString& problem);
    void setClientCount(std::size_t count);
    /// What is wrong with the preferences file now; empty for nothing.
    void setPreferencesProblem(const QString& problem);
    /// Something about the preferences file that happened once, which stays until the user hides it.
    void addPreferencesEvent(const QString& event);
    /// Names the profile files that could not be loaded, with their reasons.
    void setSkippedProfiles(const std::vector<ProfileCatalogue::BrokenFile>& files);
    void addErrors(int count);
    void addWarnings(int count);

private:
    QLabel* addPart(const QString& objectName, const QString& icon);
    void addPreferencesPart();
    void showPreferences();
    void showCountsSoon();
    void showCounts();

    QStatusBar* m_bar;
    QLabel* m_listeningIcon = nullptr;
    QLabel* m_listening;
    QLabel* m_instance;
    QLabel* m_skipped;
    QWidget* m_preferencesPart = nullptr;
    QLabel* m_preferences = nullptr;
    QString m_preferencesProblem;
    QString m_preferencesEvent;
    QLabel* m_clients;
    QLabel* m_errors;
    QLabel* m_warnings;
    std::size_t m_clientCount = 0;
    quint64 m_errorCount = 0;
    quint64 m_warningCount = 0;
    QTimer m_update;
};
