#pragma once

#include "SessionFolder.h"
#include "SessionReplay.h"
#include "SessionSource.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <map>
#include <optional>
#include <vector>

class Client;
class ClientInterface;
class ClientRecorder;
class ClientTabWidget;
class QPushButton;

namespace widgets {
class NoticeBar;
}

/// What is kept of the clients of all pages: those that are connected are recorded, and those of sessions
/// that were opened are played into pages of their own. A bar above the tabs tells which session the current
/// page belongs to, and plays it again at the pace in which it was recorded.
class SessionPages : public QObject {
    Q_OBJECT

public:
    /// Adds a page for a client of a session, with words for which one it is.
    using AddPage = std::function<ClientInterface*(Client* client, const QString& session)>;

    /// The bar goes into the layout of the widget around the tabs.
    SessionPages(ClientTabWidget& tabs, QWidget* around, const AddPage& addPage);
    ~SessionPages() override;

    /// Shows a session file, or tells why that cannot be.
    void open(const QString& path, SessionReplay::Pace pace = SessionReplay::Pace::AtOnce);

    /// Whether clients that connect from now on are recorded in the user's folder.
    void setRecordsAll(bool recordsAll) { m_recordsAll = recordsAll; }
    const SessionFolder& folder() const { return m_folder; }
    /// Keeps what a client sends from now on.
    void record(Client& client, ClientInterface& page);

    /// What is kept of a page's client; nothing for a page without one.
    std::optional<SessionSource> sourceOf(const ClientInterface* page) const;
    /// Of all pages, in the order of their tabs.
    std::vector<SessionSource> sources() const;
    bool hasSources() const { return !m_kept.empty(); }

Q_SIGNALS:
    void statusMessage(const QString& text);
    void opened(const QString& path);
    /// A session cannot be shown; the reason is a readable text.
    void notOpened(const QString& path, const QString& reason);
    void sourcesChanged();

private:
    struct Kept {
        QPointer<ClientRecorder> recorder; ///< Of a connected client.
        QPointer<SessionReplay> replay; ///< Else.
        const ReplayedClient* client = nullptr; ///< Of the replay.
    };

    void setUpBar(QWidget* around);
    void forget(const ClientInterface* page);
    void keep(ClientInterface& page, const Kept& kept);
    SessionReplay* currentReplay() const;
    void playAgain();
    void pauseOrGoOn();
    void showBar();
    QString barText(const SessionReplay& replay) const;

    ClientTabWidget& m_tabs;
    AddPage m_addPage;
    bool m_recordsAll = false;
    SessionFolder m_folder;
    std::map<const ClientInterface*, Kept> m_kept;
    widgets::NoticeBar* m_bar = nullptr;
    QPushButton* m_again = nullptr;
    QPushButton* m_pause = nullptr;
    QPushButton* m_step = nullptr;
    QPushButton* m_showAll = nullptr;
};
