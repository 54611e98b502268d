#include "SystemReportGUIReceiver.h"

#include <algorithm>

using ui::messages::Message;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace {

/// Entries of one kind at most: no real report comes near it, and no client can fill the memory.
constexpr std::size_t entryLimit = 4096;

QString textAt(const Message& message, std::size_t at, std::size_t fieldEnd = ui::messages::recordSize)
{
    const std::string_view bytes = message.text(at, fieldEnd);
    QString text = QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
    std::replace_if(
        text.begin(), text.end(), [](QChar c) { return !c.isPrint() && !c.isSurrogate(); }, QLatin1Char(' '));
    return text;
}

template <typename Entry> void append(std::vector<Entry>& entries, Entry entry)
{
    if (entries.size() < entryLimit)
        entries.push_back(std::move(entry));
}

} // namespace

SystemReportGUIReceiver::SystemReportGUIReceiver(QObject* parent)
    : QObject(parent)
{
    qRegisterMetaType<SystemReport>("SystemReport");
}

void SystemReportGUIReceiver::receive(const Message& message)
{
    if (m_complete)
        return;
    switch (message.type()) {
    case Type::ReportLeadingNumber:
        m_report.leadingNumber = message.u32(offset::payload);
        break;
    case Type::ReportFlag:
        if (m_report.flags.size() < entryLimit || m_report.flags.contains(message.u32(offset::reportKey)))
            m_report.flags[message.u32(offset::reportKey)] = message.u8(offset::reportFlag);
        break;
    case Type::ReportText:
        append(m_report.texts,
            {textAt(message, offset::reportText, offset::reportTextEnd), message.u8(offset::reportTextEnd)});
        break;
    case Type::ReportDetail:
        append(m_report.details,
            {textAt(message, offset::reportText, offset::reportTextEnd), message.u32(offset::reportTextEnd)});
        break;
    case Type::ReportKeyedText:
        append(
            m_report.keyedTexts, {message.u32(offset::reportKey), textAt(message, offset::reportKeyedText)});
        break;
    case Type::ReportOtherKeyedText:
        append(m_report.otherKeyedTexts,
            {message.u32(offset::reportKey), textAt(message, offset::reportKeyedText)});
        break;
    case Type::ReportComplete:
        m_complete = true;
        Q_EMIT ready(m_report);
        break;
    default:
        break;
    }
}
