#include "SystemReportGUIReceiver.h"

#include "RecordText.h"

#include <utility>

using ui::messages::Message;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace {

/// Entries of one kind, and characters of all texts, at most: no real report comes near it, and no client can
/// fill the memory or stop the window with it. Showing a line takes far more than its characters.
constexpr std::size_t entryLimit = 4096;
constexpr qsizetype textLimit = 1'000'000;
constexpr qsizetype lineCost = 50;

qsizetype costOf(const QString& text)
{
    return text.size() + lineCost * text.count(QLatin1Char('\n'));
}

QString nameAt(const Message& message)
{
    return record_text::singleLine(message.text(offset::reportText, offset::reportTextEnd));
}

QString keyedTextAt(const Message& message)
{
    return record_text::multiLine(message.text(offset::reportKeyedText)).trimmed();
}

} // namespace

SystemReportGUIReceiver::SystemReportGUIReceiver(QObject* parent)
    : QObject(parent)
{
    qRegisterMetaType<SystemReport>("SystemReport");
}

void SystemReportGUIReceiver::clear()
{
    m_report = {};
    m_textSize = 0;
    m_complete = false;
    m_session = nullptr;
}

template <typename Entry> void SystemReportGUIReceiver::append(std::vector<Entry>& entries, Entry entry)
{
    const qsizetype cost = costOf(entry.text);
    if (entries.size() >= entryLimit || m_textSize + cost > textLimit) {
        ++m_report.dropped;
        return;
    }
    m_textSize += cost;
    entries.push_back(std::move(entry));
}

void SystemReportGUIReceiver::setFlag(quint32 key, quint8 flag)
{
    if (m_report.flags.size() < entryLimit || m_report.flags.contains(key))
        m_report.flags[key] = flag;
    else
        ++m_report.dropped;
}

void SystemReportGUIReceiver::receiveRecorded(const QObject* session, const Message& message)
{
    if (m_complete && m_session && m_session != session)
        clear();
    if (m_complete)
        return;
    receive(message);
    if (m_complete)
        m_session = session;
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
        setFlag(message.u32(offset::reportKey), message.u8(offset::reportFlag));
        break;
    case Type::ReportText:
        append(m_report.texts, {nameAt(message), message.u8(offset::reportTextEnd)});
        break;
    case Type::ReportDetail:
        append(m_report.details, {nameAt(message), message.u32(offset::reportTextEnd)});
        break;
    case Type::ReportKeyedText:
        append(m_report.keyedTexts, {message.u32(offset::reportKey), keyedTextAt(message)});
        break;
    case Type::ReportOtherKeyedText:
        append(m_report.otherKeyedTexts, {message.u32(offset::reportKey), keyedTextAt(message)});
        break;
    case Type::ReportComplete:
        m_complete = true;
        Q_EMIT ready(std::exchange(m_report, {}));
        break;
    default:
        break;
    }
}
