#include "ClientRecorder.h"

#include "Client.h"
#include "Notices.h"
#include "RecordText.h"
#include "SessionFormat.h"

#include <QFile>

#include <utility>

using ui::messages::Message;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace {

/// Milliseconds of records that a window that is killed may lose of a file.
constexpr int longestWait = 1000;

} // namespace

ClientRecorder::ClientRecorder(const Client& client, const QString& path, QObject* parent)
    : QObject(parent)
    , m_client(client)
{
    m_flush.setSingleShot(true);
    m_flush.setInterval(longestWait);
    connect(&m_flush, &QTimer::timeout, this, &ClientRecorder::flush);
    open(path);
    connect(&client, &Client::setPID, this, [this](Client*, PID_TYPE pid) { setPid(pid); });
    connect(&client, &Client::setName, this, [this](Client*, const QString& name) { setName(name); });
    connect(&client, &Client::clientMessage, this, &ClientRecorder::take);
    connect(&client, &Client::systemReportMessage, this, &ClientRecorder::take);
    connect(&client, &Client::cleanDisconnect, this, [this] { end(true); });
    connect(&client, &Client::ickyDisconnect, this, [this] { end(false); });
}

ClientRecorder::~ClientRecorder()
{
    begin();
}

void ClientRecorder::open(const QString& path)
{
    if (!path.isEmpty() && m_writer.open(QFile::encodeName(path).toStdString())) {
        m_path = path;
        return;
    }
    const QString reason = QString::fromStdString(m_writer.reason());
    if (!m_writer.openNameless() || !path.isEmpty()) {
        m_isFailureTold = true;
        // Nobody listens yet.
        QMetaObject::invokeMethod(
            this, [this, reason] { Q_EMIT failed(reason); }, Qt::QueuedConnection);
    }
}

void ClientRecorder::begin()
{
    if (std::exchange(m_hasBegun, true))
        return;
    m_writer.beginClient(m_pid.value_or(0), m_name, m_device, m_writer.now());
}

void ClientRecorder::setPid(PID_TYPE pid)
{
    m_pid = pid;
    if (!m_hasBegun)
        return;
    std::string payload;
    sessions::format::putNumber(payload, pid, sizeof pid);
    add(Type::SetPid, payload);
}

void ClientRecorder::setName(const QString& name)
{
    m_name = name.toStdString();
    if (m_hasBegun)
        add(Type::SetName, m_name);
}

void ClientRecorder::add(Type type, const std::string& payload)
{
    m_writer.add(0, {static_cast<std::uint32_t>(type), ui::messages::noFrame, payload}, m_writer.now());
}

void ClientRecorder::take(const Message& message)
{
    if (m_hasEnded)
        return;
    noteDevice(message);
    noteEnd(message);
    begin();
    const std::string_view payload(
        message.data() + offset::payload, ui::messages::recordSize - offset::payload);
    m_writer.add(0, {message.rawType(), message.frame(), payload}, m_writer.timeAt(m_client.readingTime()));
    if (!m_path.isEmpty() && !m_flush.isActive())
        m_flush.start();
    checkFailure();
}

/// The layer tells it once on the console, and in its report, which a launcher keeps for a later window.
void ClientRecorder::noteDevice(const Message& message)
{
    const Type type = message.type();
    if (!m_device.empty() || (type != Type::Information && type != Type::ReportOtherKeyedText))
        return;
    const std::size_t at = type == Type::Information ? offset::text : offset::reportKeyedText;
    const std::optional<std::string_view> device = notices::deviceOf(message.text(at));
    if (!device)
        return;
    m_device = *device;
    if (m_hasBegun)
        m_writer.setDevice(0, m_device, m_writer.now());
    Q_EMIT deviceKnown(record_text::singleLine(m_device));
}

void ClientRecorder::noteEnd(const Message& message)
{
    m_endText.clear();
    const Type type = message.type();
    if (type != Type::Information && type != Type::Warning && type != Type::Error)
        return;
    const std::string_view field(message.data() + offset::text, ui::messages::recordSize - offset::text);
    if (notices::tellsEnd(field))
        m_endText = message.text(offset::text);
}

QString ClientRecorder::endText() const
{
    return record_text::singleLine(m_endText);
}

void ClientRecorder::flush()
{
    m_writer.flush();
    checkFailure();
    if (m_hasEnded || !m_mayGrow || m_mayGrow())
        return;
    end(false);
    Q_EMIT failed(tr("the folder of recorded sessions has no room"));
}

void ClientRecorder::checkFailure()
{
    if (m_hasEnded || m_writer.ok() || std::exchange(m_isFailureTold, true))
        return;
    Q_EMIT failed(QString::fromStdString(m_writer.reason()));
}

void ClientRecorder::end(bool isClean)
{
    if (std::exchange(m_hasEnded, true))
        return;
    m_flush.stop();
    begin();
    m_writer.endClient(
        0, isClean ? sessions::ClientEnd::Clean : sessions::ClientEnd::Lost, m_endText, m_writer.now());
    m_whole = m_writer.again();
    m_writer.close();
    Q_EMIT closed();
}

SessionSource ClientRecorder::source(const QString& title)
{
    if (!m_hasEnded) {
        begin();
        m_writer.flush();
    }
    return openSessionSource(
        title, m_hasEnded && m_whole ? platform::openAgain(fileno(m_whole.get())) : m_writer.again(), {0});
}
