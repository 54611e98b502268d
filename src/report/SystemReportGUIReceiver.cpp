#include "SystemReportGUIReceiver.h"

#include <algorithm>
#include <utility>

using ui::messages::Message;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace {

/// Entries of one kind, and characters of all texts, at most: no real report comes near it, and no client can
/// fill the memory or stop the window with it.
constexpr std::size_t entryLimit = 4096;
constexpr qsizetype textLimit = 1'000'000;

QString textAt(const Message& message, std::size_t at, std::size_t fieldEnd = ui::messages::recordSize)
{
    const std::string_view bytes = message.text(at, fieldEnd);
    QString text = QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
    std::replace_if(
        text.begin(), text.end(), [](QChar c) { return !c.isPrint() && !c.isSurrogate(); }, QLatin1Char(' '));
    return text;
}

} // namespace

SystemReportGUIReceiver::SystemReportGUIReceiver(QObject* parent)
    : QObject(parent)
{
    qRegisterMetaType<SystemReport>("SystemReport");
}

template <typename Entry> void SystemReportGUIReceiver::append(std::vector<Entry>& entries, Entry entry)
{
    if (entries.size() >= entryLimit || m_textSize + entry.text.size() > textLimit)
        return;
    m_textSize += entry.text.size();
    entries.push_back(std::move(entry));
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
        Q_EMIT ready(std::exchange(m_report, {}));
        break;
    default:
        break;
    }
}
