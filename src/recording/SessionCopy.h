#pragma once

#include "SessionSource.h"

#include <QObject>
#include <QString>

#include <memory>
#include <vector>

/// Writes what several sources have by now into one session file, record by record in the order of their
/// times, in steps of the event loop.
class SessionCopy : public QObject {
    Q_OBJECT

public:
    explicit SessionCopy(QObject* parent);
    ~SessionCopy() override;

    /// Begins; nothing happens while it is busy. There is one source at least.
    void start(const std::vector<SessionSource>& sources, const QString& path);
    bool isBusy() const { return m_job != nullptr; }

Q_SIGNALS:
    /// Emitted last when it has ended, with words for it. The file is complete where it was saved, and as it
    /// was else.
    void ended(bool saved, const QString& path, const QString& text);

private:
    struct Job;

    QString begin(const std::vector<SessionSource>& sources);
    void step();
    void finish(const QString& failure);

    std::unique_ptr<Job> m_job;
};
