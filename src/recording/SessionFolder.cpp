#include "SessionFolder.h"

#include "SessionFiles.h"
#include "SessionFormat.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

namespace {

/// Whether a file is one of ours: by its name, and by what it begins with.
bool isRecorded(const QFileInfo& info)
{
    static const QRegularExpression name(
        QStringLiteral(R"(^recorded-\d{8}-\d{6}(-\d+)?\.)") + session_files::suffix() + QLatin1Char('$'));
    if (!info.isFile() || info.isSymLink() || !name.match(info.fileName()).hasMatch())
        return false;
    QFile file(info.filePath());
    const QByteArray magic(
        sessions::format::magic.data(), static_cast<qsizetype>(sessions::format::magic.size()));
    return file.open(QIODevice::ReadOnly) && (file.size() == 0 || file.read(magic.size()) == magic);
}

} // namespace

QString SessionFolder::usualPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
        + QStringLiteral("/corvale/sessions");
}

SessionFolder::SessionFolder(const QString& path)
    : SessionFolder(path, Limits{})
{
}

SessionFolder::SessionFolder(const QString& path, const Limits& limits)
    : m_path(path)
    , m_limits(limits)
{
}

QString SessionFolder::addFile()
{
    if (!QDir().mkpath(m_path))
        return {};
    // What programs say may be nobody else's business.
    QFile::setPermissions(m_path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    prune(m_limits.files - 1);
    const QString start = m_path + QStringLiteral("/recorded-")
        + QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    const QString suffix = QLatin1Char('.') + session_files::suffix();
    QString path = start + suffix;
    for (int i = 2; QFileInfo::exists(path) || m_written.contains(path); ++i)
        path = start + QLatin1Char('-') + QString::number(i) + suffix;
    m_written.append(path);
    return path;
}

void SessionFolder::closeFile(const QString& path)
{
    m_written.removeAll(path);
    makeRoom();
}

bool SessionFolder::makeRoom()
{
    return prune(m_limits.files);
}

bool SessionFolder::prune(int files)
{
    int count = 0;
    std::int64_t bytes = 0;
    QFileInfoList complete;
    for (const QFileInfo& info : QDir(m_path).entryInfoList(QDir::Files | QDir::Hidden, QDir::Time)) {
        if (!isRecorded(info))
            continue;
        ++count;
        bytes += info.size();
        if (!m_written.contains(info.filePath()))
            complete.append(info);
    }
    while (!complete.isEmpty() && (count > files || bytes > m_limits.bytes)) {
        const QFileInfo oldest = complete.takeLast();
        if (!QFile::remove(oldest.filePath()))
            continue;
        --count;
        bytes -= oldest.size();
    }
    return bytes <= m_limits.bytes;
}
