#include "MutedErrors.h"

#include <utility>

MutedErrors::MutedErrors(std::filesystem::path file, QObject* parent)
    : QObject(parent)
    , m_file(std::move(file))
{
    read();
}

bool MutedErrors::read()
{
    m_problem.clear();
    if (m_file.empty() || m_kinds.read(m_file, true))
        return true;
    m_problem = QString::fromStdString(m_kinds.reason());
    return false;
}

bool MutedErrors::store()
{
    if (!m_file.empty() && !m_kinds.write(m_file)) {
        const QString reason = QString::fromStdString(m_kinds.reason());
        read();
        Q_EMIT failed(tr("The muted kinds are not saved: %1").arg(reason));
        return false;
    }
    Q_EMIT changed();
    return true;
}

bool MutedErrors::mute(const std::vector<sessions::Signature>& kinds)
{
    // What cannot be read is not to be replaced.
    if (!read()) {
        Q_EMIT failed(tr("Nothing is muted: %1").arg(m_problem));
        return false;
    }
    for (const sessions::Signature& kind : kinds) {
        if (!m_kinds.add(kind) && !m_kinds.contains(kind)) {
            read();
            Q_EMIT failed(tr("No more kinds can be muted. Show some of them again first."));
            return false;
        }
    }
    return store();
}

bool MutedErrors::show(const std::vector<sessions::Signature>& kinds)
{
    if (!read()) {
        Q_EMIT failed(tr("The muted kinds are not changed: %1").arg(m_problem));
        return false;
    }
    for (const sessions::Signature& kind : kinds)
        m_kinds.remove(kind);
    return store();
}
