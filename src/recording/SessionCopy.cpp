#include "SessionCopy.h"

#include "FileReplacement.h"
#include "SessionWriter.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTimer>

#include <algorithm>
#include <chrono>

using sessions::SessionTime;

namespace {

/// Milliseconds that one step takes.
constexpr int stepTime = 10;

} // namespace

struct SessionCopy::Job {
    explicit Job(const QString& filePath)
        : path(filePath)
        , file(QFile::encodeName(filePath).toStdString(), platform::FileReplacement::WhenTaken::Refuse)
    {
    }

    /// A source with its next record.
    struct Part {
        SessionRecords records;
        sessions::SessionRecord record;
        bool hasRecord = false;
        SessionTime offset{}; ///< From the beginning of the copy to that of the source.
        std::vector<std::uint32_t> numbers; ///< Of its clients in the copy.

        void fetch() { hasRecord = records.next(record); }
        SessionTime time() const { return record.time + offset; }
    };

    /// The part whose record comes next; none at the end.
    Part* nextPart()
    {
        Part* next = nullptr;
        for (const auto& part : parts) {
            if (part->hasRecord && (!next || part->time() < next->time()))
                next = part.get();
        }
        return next;
    }

    QString path;
    platform::FileReplacement file;
    sessions::SessionWriter writer;
    std::vector<std::unique_ptr<Part>> parts;
};

SessionCopy::SessionCopy(QObject* parent)
    : QObject(parent)
{
}

SessionCopy::~SessionCopy() = default;

void SessionCopy::start(const std::vector<SessionSource>& sources, const QString& path)
{
    if (isBusy())
        return;
    m_job = std::make_unique<Job>(path);
    const QString failure = begin(sources);
    if (failure.isEmpty())
        QTimer::singleShot(0, this, &SessionCopy::step);
    else
        finish(failure);
}

/// Opens the sources and writes out their clients. Returns why that failed.
QString SessionCopy::begin(const std::vector<SessionSource>& sources)
{
    if (!m_job->file.ready())
        return QString::fromStdString(m_job->file.reason());
    auto begin = std::chrono::system_clock::time_point::max();
    for (const SessionSource& source : sources) {
        auto part = std::make_unique<Job::Part>();
        if (!part->records.open(source))
            return tr("\"%1\" cannot be read: %2").arg(source.title, part->records.reason());
        begin = std::min(begin, part->records.session().begin());
        m_job->parts.push_back(std::move(part));
    }
    const auto output = [&file = m_job->file](std::string_view bytes) {
        return file.append(bytes) ? std::string() : file.reason();
    };
    m_job->writer.open(output, begin);
    for (std::size_t i = 0; i < sources.size(); ++i) {
        Job::Part& part = *m_job->parts[i];
        part.offset = std::chrono::duration_cast<SessionTime>(part.records.session().begin() - begin);
        for (const sessions::SessionClient& client : part.records.session().clients()) {
            part.numbers.push_back(part.records.isWanted(client.number) ? m_job->writer.beginClient(
                                       client.pid, client.name, client.device, client.begin + part.offset)
                                                                        : 0);
        }
        part.fetch();
    }
    return {};
}

void SessionCopy::step()
{
    if (!m_job)
        return;
    QElapsedTimer time;
    time.start();
    Job::Part* part = m_job->nextPart();
    while (part && m_job->writer.ok()) {
        m_job->writer.add(part->numbers[part->record.client], part->record.record, part->time());
        part->fetch();
        if (time.hasExpired(stepTime)) {
            QTimer::singleShot(0, this, &SessionCopy::step);
            return;
        }
        part = m_job->nextPart();
    }
    for (const auto& ended : m_job->parts) {
        for (const sessions::SessionClient& client : ended->records.session().clients()) {
            if (client.end != sessions::ClientEnd::None && ended->records.isWanted(client.number))
                m_job->writer.endClient(ended->numbers[client.number], client.end, client.endText,
                    client.endTime + ended->offset);
        }
    }
    if (m_job->writer.close())
        finish(QString::fromStdString(m_job->file.commit({}).reason));
    else
        finish(QString::fromStdString(m_job->writer.reason()));
}

void SessionCopy::finish(const QString& failure)
{
    const QString path = m_job->path;
    QString damage;
    for (const auto& part : m_job->parts)
        damage = damage.isEmpty() ? part->records.damage() : damage;
    m_job.reset();
    QString text = tr("The session was not saved: %1").arg(failure);
    if (failure.isEmpty())
        text = tr("The session was saved to \"%1\".").arg(QDir::toNativeSeparators(path));
    if (!damage.isEmpty())
        text += QLatin1Char(' ') + damage;
    Q_EMIT ended(failure.isEmpty(), path, text);
}
