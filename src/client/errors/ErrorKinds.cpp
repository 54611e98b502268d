#include "ErrorKinds.h"

#include "ErrorListModel.h"
#include "KnownKinds.h"

#include <QCoreApplication>

QString severityText(sessions::Severity severity)
{
    switch (severity) {
    case sessions::Severity::Error:
        break;
    case sessions::Severity::Warning:
        return QCoreApplication::translate("ErrorKinds", "Warning");
    case sessions::Severity::Message:
        return QCoreApplication::translate("ErrorKinds", "Message");
    }
    return QCoreApplication::translate("ErrorKinds", "Error");
}

void ErrorKinds::restart(const ErrorListModel* errors)
{
    m_errors = errors;
    m_rows.clear();
    m_kinds.clear();
    m_numbers.clear();
}

ErrorKinds::Kind ErrorKinds::kindOf(int row)
{
    const auto place = static_cast<std::size_t>(row);
    while (m_rows.size() <= place)
        m_rows.push_back(find(static_cast<int>(m_rows.size())));
    return m_rows[place];
}

ErrorKinds::Kind ErrorKinds::find(int row)
{
    const error_list::Row facts = m_errors->row(row);
    const sessions::Severity severity = facts.severity == error_list::SeverityWarning
        ? sessions::Severity::Warning
        : sessions::Severity::Error;
    m_buffer.clear();
    const sessions::SignatureView signature =
        sessions::signatureOf(severity, facts.function, facts.code, facts.description, m_buffer);
    if (const auto known = m_numbers.find(signature); known != m_numbers.end())
        return known->second;
    const auto kind = static_cast<Kind>(m_kinds.size());
    const auto added = m_numbers.emplace(signature.copy(), kind).first;
    m_kinds.push_back({&added->first, m_muted && m_muted->contains(signature)});
    return kind;
}

void ErrorKinds::setMuted(const sessions::KnownKinds* muted)
{
    m_muted = muted;
    for (Entry& kind : m_kinds)
        kind.isMuted = muted && muted->contains(*kind.signature);
}

bool ErrorKinds::hasMuted() const
{
    return m_muted && !m_muted->empty();
}
