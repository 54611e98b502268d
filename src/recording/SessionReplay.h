#pragma once

#include "SessionSource.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <vector>

class ReplayedClient;

/// Plays the clients of a session file: all at once, in steps of the event loop, or at the pace in which the
/// records came.
class SessionReplay : public QObject {
    Q_OBJECT

public:
    /// Clients of a session that are played; of a session with more, the first ones.
    static constexpr std::size_t clientLimit = 64;

    enum class Pace {
        AtOnce,
        Recorded,
        Paused,
    };

    explicit SessionReplay(QObject* parent);
    ~SessionReplay() override;

    /// Reads which clients there are. False with a reason().
    bool open(const QString& path);
    QString reason() const { return m_reason; }
    const QString& path() const { return m_path; }
    /// What of the session is missing or not played; empty if nothing is.
    QString damage() const;
    const sessions::SessionReader& session() const { return m_records.session(); }
    /// Owned by the replay.
    const std::vector<ReplayedClient*>& clients() const { return m_clients; }
    SessionSource source(const ReplayedClient& client, const QString& title) const;

    /// Begins, or goes on, at a pace. Nothing happens before the event loop runs.
    void play(Pace pace);
    Pace pace() const { return m_pace; }
    /// While paused: plays the next record.
    void step();
    bool hasEnded() const { return m_hasEnded; }
    /// The time in the session up to which it has been played, and that of its last record as far as that is
    /// known.
    sessions::SessionTime position() const { return m_position; }
    sessions::SessionTime length() const;
    std::uint64_t playedRecords() const { return m_played; }

Q_SIGNALS:
    /// A few times a second while it plays, and whenever something else than the position has changed.
    void progressed();
    /// All has been played.
    void ended();

private:
    void fetch();
    void schedule(int milliseconds);
    void pass();
    void giveCurrent(bool hasMore);
    void finish();
    bool isDue() const;
    sessions::SessionTime clock() const;
    void tellProgress();

    SessionRecords m_records;
    QString m_path;
    QString m_reason;
    std::vector<ReplayedClient*> m_clients;
    sessions::SessionRecord m_current;
    bool m_hasCurrent = false;
    bool m_hasEnded = false;
    Pace m_pace = Pace::Paused;
    sessions::SessionTime m_position{};
    std::uint64_t m_played = 0;
    sessions::SessionTime m_clockStart{}; ///< Position when the clock began to run.
    QElapsedTimer m_clock;
    QElapsedTimer m_sinceProgress;
    QTimer m_timer;
    quint64 m_lastIteration = 0; ///< Of the event loop.
};
