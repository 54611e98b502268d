#include "TableCopy.h"

#include <QAbstractItemModel>
#include <QClipboard>
#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QTimer>

#include <utility>

namespace {

/// Milliseconds that one step takes.
constexpr int stepTime = 10;

/// Rows of which none are copied at once, as it has taken some time to learn which they are.
constexpr int manyRows = 50'000;

} // namespace

struct TableCopy::Job {
    Job(TextTable contents, std::optional<std::vector<int>> chosen, TextTable::Format textFormat)
        : table(std::move(contents))
        , rows(std::move(chosen))
        , format(textFormat)
    {
    }

    int count() const { return rows ? static_cast<int>(rows->size()) : table.rowCount; }
    QString nextLine()
    {
        const int number = copied++;
        return table.row(rows ? (*rows)[static_cast<std::size_t>(number)] : number, format);
    }

    TextTable table;
    std::optional<std::vector<int>> rows; ///< All without.
    TextTable::Format format;
    QString text;
    int copied = 0; ///< Number of rows.
    bool isAnnounced = false;
    /// Steps of a job that was dropped end with it.
    QObject context;
};

TableCopy::TableCopy(QObject* parent)
    : QObject(parent)
{
}

TableCopy::~TableCopy() = default;

void TableCopy::start(
    const TextTable& table, std::optional<std::vector<int>> rows, TextTable::Format format, bool hasHeader)
{
    m_job = std::make_unique<Job>(table, std::move(rows), format);
    if (hasHeader)
        m_job->text = table.header(format);
    if (table.model)
        connect(table.model, &QAbstractItemModel::modelAboutToBeReset, &m_job->context,
            [this] { giveUp(tr("Nothing was copied, as the list has changed meanwhile.")); });
    if (m_job->count() < manyRows)
        step();
    else
        stepLater();
}

void TableCopy::stepLater()
{
    if (!std::exchange(m_job->isAnnounced, true))
        Q_EMIT statusMessage(tr("Copying %n row(s)...", nullptr, m_job->count()));
    QTimer::singleShot(0, &m_job->context, [this] { step(); });
}

void TableCopy::step()
{
    const QDeadlineTimer deadline(stepTime);
    Job& job = *m_job;
    while (job.copied < job.count() && job.text.size() <= m_mostText && !deadline.hasExpired())
        job.text += job.nextLine();
    if (job.text.size() > m_mostText) {
        giveUp(
            tr("The %n row(s) are too many for the clipboard. Choose \"Export\" from the context menu for a "
               "file of them.",
                nullptr, job.count()));
        return;
    }
    if (job.copied < job.count()) {
        stepLater();
        return;
    }
    const std::unique_ptr<Job> done = std::move(m_job);
    done->text.chop(1); // the end of the last line
    QGuiApplication::clipboard()->setText(done->text);
    if (done->isAnnounced)
        Q_EMIT statusMessage(tr("%n row(s) were copied.", nullptr, done->count()));
}

void TableCopy::giveUp(const QString& reason)
{
    m_job.reset();
    Q_EMIT statusMessage(reason);
}
