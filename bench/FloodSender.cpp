#include "FloodSender.h"

#include "Connection.h"
#include "Scenarios.h"
#include "Session.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include <unistd.h>

namespace flood {

namespace {

constexpr const char* senderOption = "--send";

/// Bytes that go out at once, so that the sender is never what is measured.
constexpr std::size_t batchSize = 16 * ui::messages::recordSize;

class BatchedOutput : public demo::Output {
public:
    BatchedOutput(int descriptor, bool batched)
        : m_descriptor(descriptor)
        , m_batched(batched)
    {
    }

    void send(std::string_view bytes) override
    {
        m_batch += bytes;
        if (!m_batched || m_batch.size() >= batchSize)
            flush();
    }
    void pause(demo::Clock::duration time) override { std::this_thread::sleep_for(time); }
    void settle() override { }
    void finish(std::string_view) override { }

    void flush()
    {
        for (std::size_t at = 0; at < m_batch.size();) {
            const ssize_t count = write(m_descriptor, m_batch.data() + at, m_batch.size() - at);
            if (count < 0)
                std::_Exit(0);
            at += static_cast<std::size_t>(count);
        }
        m_batch.clear();
    }

private:
    int m_descriptor;
    bool m_batched;
    std::string m_batch;
};

void sendErrors(demo::Session& session, std::uint32_t records)
{
    session.introduce("errors");
    for (std::uint32_t i = 0; i < records; ++i) {
        char text[96];
        const std::uint32_t cap = firstWrongEnumerant + i;
        std::snprintf(text, sizeof text, "GL_INVALID_ENUM in glEnable(0x%x)\nglEnable(cap = 0x%x)", cap, cap);
        session.glError(0x0500, "glEnable", text);
    }
}

} // namespace

Senders::Senders(int number, const QString& socketName, int records, int rate, Content content)
{
    const QStringList arguments{QString::fromLatin1(senderOption), socketName, QString::number(records),
        QString::number(rate),
        content == Content::Errors ? QStringLiteral("errors") : QStringLiteral("mixed")};
    for (int i = 0; i < number; ++i) {
        m_processes.push_back(std::make_unique<QProcess>());
        m_processes.back()->setProcessChannelMode(QProcess::ForwardedChannels);
        m_processes.back()->start(QCoreApplication::applicationFilePath(), arguments);
    }
}

Senders::~Senders()
{
    for (const auto& process : m_processes) {
        process->terminate();
        process->waitForFinished();
    }
}

bool Senders::haveFailed() const
{
    for (const auto& process : m_processes) {
        if (process->state() == QProcess::NotRunning && process->exitCode() != 0)
            return true;
    }
    return false;
}

std::optional<int> runAsSender(int argc, char** argv)
{
    if (argc != 6 || std::strcmp(argv[1], senderOption) != 0)
        return std::nullopt;
    try {
        const auto records = static_cast<std::uint32_t>(std::strtoul(argv[3], nullptr, 10));
        const auto rate = static_cast<std::uint32_t>(std::strtoul(argv[4], nullptr, 10));
        BatchedOutput output(demo::connectTo(demo::socketPath(argv[2])), rate == 0);
        demo::Session session(output, {});
        if (std::strcmp(argv[5], "errors") == 0) {
            sendErrors(session, records);
        } else {
            demo::FloodProgress progress;
            demo::playFlood(session, records, rate, progress);
        }
        output.flush();
        // The end of the connection is not what is measured.
        pause();
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "sender: %s\n", failure.what());
        return 1;
    }
}

} // namespace flood
