#pragma once

#include "TextTable.h"

#include <QObject>

#include <memory>
#include <optional>
#include <vector>

/// Copies rows of tables to the clipboard. Many rows are put together in steps of the event loop. Since
/// programs take what is in the clipboard in one go, there is a limit, beyond which nothing is copied.
class TableCopy : public QObject {
    Q_OBJECT

public:
    explicit TableCopy(QObject* parent);
    ~TableCopy() override;

    /// Letters that are copied at most.
    void setMostText(qsizetype letters) { m_mostText = letters; }
    /// Copies these rows of a table, or all, in place of those that are still being copied.
    void start(const TextTable& table, std::optional<std::vector<int>> rows, TextTable::Format format,
        bool hasHeader);

    bool isBusy() const { return m_job != nullptr; }

Q_SIGNALS:
    /// What becomes of rows that take longer, for the user.
    void statusMessage(const QString& text);

private:
    struct Job;

    void step();
    void stepLater();
    void giveUp(const QString& reason);

    qsizetype m_mostText = 20'000'000;
    std::unique_ptr<Job> m_job;
};
