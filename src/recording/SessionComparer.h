#pragma once

#include "SessionComparison.h"
#include "SessionSource.h"

#include <QObject>
#include <QTimer>

#include <memory>
#include <vector>

/// Reads two sessions in steps of the event loop and compares them.
class SessionComparer : public QObject {
    Q_OBJECT

public:
    explicit SessionComparer(QObject* parent);

    /// Begins anew. False, with a reason, if one cannot be read.
    bool start(const SessionSource& before, const SessionSource& after, QString& reason);
    const sessions::SessionComparison& result() const { return m_result; }
    /// What of the sessions could not be read; empty if nothing.
    QString damage() const;

Q_SIGNALS:
    void progressed(int percent);
    void done();

private:
    /// A session and what it amounts to until now.
    struct Side {
        SessionRecords records;
        sessions::SessionSummary summary;
        std::uint64_t recordCount = 0; ///< In it.
        QString title;
    };

    void step();

    std::vector<std::unique_ptr<Side>> m_sides;
    std::size_t m_current = 0; ///< Side that is being read.
    sessions::SessionComparison m_result;
    QTimer m_timer;
};
