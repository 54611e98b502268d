#pragma once

#include "MetaTypes.h"

#include <QTabBar>
#include <QTabWidget>

class Client;
class ClientInterface;

/// The tabs of the connected applications; Ctrl+W closes the current one wherever the focus is, as long as
/// the tabs are to be seen. While there is none, a disabled tab stands in. Tabs that find no room are
/// scrolled to, or chosen from the list of ClientListButton.
class ClientTabWidget : public QTabWidget {
    Q_OBJECT

public:
    /// What has become of a client's connection.
    enum class Connection {
        Connected,
        Ended, ///< The application has said good-bye.
        Lost,
    };

    /// A tab bar on which a middle click asks to close a tab. Long titles are cut in the middle, so that both
    /// the beginning of an application's name and its PID can be read.
    class ClientTabBar : public QTabBar {
    public:
        using QTabBar::QTabBar;

    protected:
        void mouseReleaseEvent(QMouseEvent* event) override;
        QSize tabSizeHint(int index) const override;
        QSize minimumTabSizeHint(int index) const override;
    };

    explicit ClientTabWidget(QWidget* parent = nullptr);

    /// Adds a tab for a client and makes it the current one. It takes the place of the stand-in, and with
    /// autoClose finished tabs are closed first, but for sessions, and those whose consoles are being
    /// saved, or are about to be.
    ClientInterface* addClient(Client* client, const QFont& font, bool autoClose);

    /// The same for a client that is read from a session, with words for which one it is. It closes no tab.
    ClientInterface* addSession(Client* client, const QFont& font, const QString& session);

    /// Closes the tab at an index and destroys its page, as soon as its console is saved where it is being
    /// so. An index that no tab has changes nothing.
    void closeTabAt(int index);

    /// True while the console or rows of a page, also of one whose tab is closed, are being saved.
    bool isSaving() const;

    /// The page of a client; none once its tab is closed.
    ClientInterface* pageOf(const Client* client) const;

    /// The number of applications that are connected, which may have no tab any more.
    void setConnectedCount(std::size_t count);

    void setPid(const Client* client, PID_TYPE pid);
    void setName(const Client* client, const QString& name);
    /// For the tool tip.
    void setDevice(const Client* client, const QString& device);
    void setEndText(const Client* client, const QString& text);
    /// Ends a client's session on its page with a text.
    void finish(const Client* client, const QString& text, Connection connection);
    /// The state of the connection of the tab at an index.
    Connection connectionAt(int index) const;

    /// The page at an index, if it is a client's or the stand-in.
    ClientInterface* pageAt(int index) const;

private:
    void addPlaceholder();
    void closeFinishedTabs();
    void closePlaceholder();
    void removePage(int index);
    void focusCurrent(int subPage);
    void showTitle(const ClientInterface& page);

    std::size_t m_connectedCount = 0;
};
