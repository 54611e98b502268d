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

} // namespace

struct TableCopy::Job {
    Job(TextTable contents, std::vector<int> chosen, TextTable::Format textFormat)
        : table(std::move(contents))
        , rows(std::move(chosen))
        , format(textFormat)
    {
    }

    TextTable table;
    std::vector<int> rows;
    TextTable::Format format;
    QString text;
    std::size_t copied = 0; ///< Number of rows.
    bool isAnnounced = false;
    /// Steps of a job that was dropped end with it.
    QObject context;
};

TableCopy::TableCopy(QObject* parent)
    : QObject(parent)
{
}

TableCopy::~TableCopy() = default;

void TableCopy::start(const TextTable& table, std::vector<int> rows, TextTable::Format format, bool hasHeader)
{
    m_job = std::make_unique<Job>(table, std::move(rows), format);
    if (hasHeader)
        m_job->text = table.header(format);
    if (table.model)
        connect(table.model, &QAbstractItemModel::modelAboutToBeReset, &m_job->context,
            [this] { giveUp(tr("Nothing was copied, as the list has changed meanwhile.")); });
    step();
}

void TableCopy::step()
{
    const QDeadlineTimer deadline(stepTime);
    Job& job = *m_job;
    while (job.copied < job.rows.size() && job.text.size() <= m_mostText && !deadline.hasExpired())
        job.text += job.table.row(job.rows[job.copied++], job.format);
    if (job.text.size() > m_mostText) {
        giveUp(
            tr("The %n row(s) are too many for the clipboard. Choose \"Export\" from the context menu for a "
               "file of them.",
                nullptr, static_cast<int>(job.rows.size())));
        return;
    }
    if (job.copied < job.rows.size()) {
        if (!std::exchange(job.isAnnounced, true))
            Q_EMIT statusMessage(tr("Copying %n row(s)...", nullptr, static_cast<int>(job.rows.size())));
        QTimer::singleShot(0, &job.context, [this] { step(); });
        return;
    }
    const std::unique_ptr<Job> done = std::move(m_job);
    done->text.chop(1); // the end of the last line
    QGuiApplication::clipboard()->setText(done->text);
    if (done->isAnnounced)
        Q_EMIT statusMessage(tr("%n row(s) were copied.", nullptr, static_cast<int>(done->rows.size())));
}

void TableCopy::giveUp(const QString& reason)
{
    m_job.reset();
    Q_EMIT statusMessage(reason);
}
