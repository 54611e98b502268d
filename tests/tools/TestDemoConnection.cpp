#include "Connection.h"
#include "Session.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

using demo::Connection;
using demo::SessionOver;
using ui::messages::Message;
using ui::messages::recordSize;
using ui::messages::Type;

namespace {

class DemoConnection : public testing::Test {
protected:
    DemoConnection()
    {
        std::array<int, 2> ends{};
        EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
        m_server = ends[1];
        m_connection = std::make_unique<Connection>(
            ends[0], [this](const Message& control) { m_received.push_back(control.rawType()); });
    }
    void TearDown() override { closeServer(); }

    void closeServer()
    {
        if (m_server >= 0)
            close(m_server);
        m_server = -1;
    }
    void serverSends(const std::string& bytes) const
    {
        std::string_view rest = bytes;
        while (!rest.empty()) {
            const ssize_t count = send(m_server, rest.data(), rest.size(), MSG_NOSIGNAL);
            ASSERT_GT(count, 0);
            rest.remove_prefix(static_cast<std::size_t>(count));
        }
    }
    /// Everything up to the end of the connection.
    std::string serverReads() const
    {
        std::string all;
        std::array<char, 65536> part{};
        for (;;) {
            const ssize_t count = read(m_server, part.data(), part.size());
            if (count <= 0)
                return all;
            all.append(part.data(), static_cast<std::size_t>(count));
        }
    }
    SessionOver::Reason reasonToEnd(std::string_view bytes)
    {
        try {
            for (;;)
                m_connection->send(bytes);
        } catch (const SessionOver& over) {
            return over.reason();
        }
    }

    int m_server = -1;
    std::vector<std::uint32_t> m_received;
    std::unique_ptr<Connection> m_connection;
};

std::string bytes(const Message& message)
{
    return std::string(demo::bytesOf(message));
}

} // namespace

TEST_F(DemoConnection, bothEndsMayWriteMoreThanTheSocketHolds)
{
    constexpr std::size_t count = 400;
    std::string all;
    // The server does not read before all of its own is out.
    std::thread server([&] {
        for (std::size_t i = 0; i < count; ++i)
            serverSends(bytes(Message::wireframeOn()));
        all = serverReads();
    });
    const Message message = Message::make(Type::LineBreak);
    for (std::size_t i = 0; i < count; ++i)
        m_connection->send(demo::bytesOf(message));
    m_connection->finish(demo::bytesOf(message));
    m_connection.reset();
    server.join();
    EXPECT_EQ(all.size(), (count + 1) * recordSize);
    EXPECT_EQ(m_received, std::vector(count, 12U));
}

TEST_F(DemoConnection, aStopNoticeEndsTheSessionBetweenTwoRecords)
{
    const std::string record = bytes(Message::make(Type::Information));
    const std::string notice = bytes(Message::notifyServerStop());
    serverSends(bytes(Message::make(static_cast<Type>(99))) + notice.substr(0, 5000));
    m_connection->send(record.substr(0, 100));
    EXPECT_EQ(m_received, std::vector{99U});
    serverSends(notice.substr(5000));
    EXPECT_NO_THROW(m_connection->send(record.substr(100)));
    EXPECT_EQ(reasonToEnd(record), SessionOver::Reason::StopNotice);
    m_connection->finish(record);
    m_connection.reset();
    EXPECT_EQ(serverReads(), record + record);
    EXPECT_EQ(m_received, (std::vector{99U, 11U}));
}

TEST_F(DemoConnection, aServerThatIsGoneEndsTheSession)
{
    // A record that it sent before is still heard.
    serverSends(bytes(Message::wireframeOff()));
    closeServer();
    EXPECT_EQ(reasonToEnd(bytes(Message::make(Type::Information))), SessionOver::Reason::Closed);
    EXPECT_EQ(m_received, std::vector{13U});
    EXPECT_NO_THROW(m_connection->finish("anything"));
}
