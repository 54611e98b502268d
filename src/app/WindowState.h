#pragma once

#include <QByteArray>
#include <QObject>

class ClientInterface;
class ContextInterface;
class MainWindow;
class Preferences;
class QSplitter;
class QTabWidget;

/// Remembers how a user has arranged the main window: size and place, page, splitters, the columns and the
/// filter of the error lists, the pages of contexts, and whether tabs are closed by themselves.
class WindowState : public QObject {
    Q_OBJECT

public:
    /// Restores what was remembered. Belongs to the window, which is not shown yet.
    WindowState(MainWindow& window, Preferences& preferences);

    /// Gives the page of a client, and those of its contexts, what was remembered of such pages, and
    /// remembers the user's changes.
    void follow(ClientInterface& page);
    /// To be called when the window closes.
    void save();

private:
    void restoreGeometry();
    void followContext(ContextInterface& page);

    MainWindow& m_window;
    Preferences& m_preferences;
    QTabWidget* m_pages;
    QSplitter* m_profileSplitter;
    QSplitter* m_profileListsSplitter;
    QByteArray m_errorListColumns;
    QByteArray m_contextSplitter;
    QByteArray m_contextColumns;
};
