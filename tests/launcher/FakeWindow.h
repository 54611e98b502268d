#pragma once

#include "Message.h"

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

/// What one client has sent to a window.
struct SeenClient {
    struct Record {
        std::uint32_t type;
        std::uint32_t frame;
        std::string text;
    };

    int descriptor = -1;
    bool isClosed = false;
    std::string rest; ///< The beginning of a record.
    std::vector<Record> records;
    std::size_t errorCount = 0;
    std::size_t droppedCount = 0; ///< That warnings have told of.

    std::vector<std::uint32_t> types() const
    {
        std::vector<std::uint32_t> types;
        for (const Record& record : records)
            types.push_back(record.type);
        return types;
    }
    /// The frames of the errors; the programs of these tests count with them.
    std::vector<std::uint32_t> errorFrames() const
    {
        std::vector<std::uint32_t> frames;
        for (const Record& record : records) {
            if (record.type == 9)
                frames.push_back(record.frame);
        }
        return frames;
    }
};

/// The window's end of the socket: takes what clients send, when it is told to.
class FakeWindow {
public:
    FakeWindow()
        : m_path(std::filesystem::temp_directory_path() / "Corvale")
        , m_listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0))
    {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        m_path.string().copy(address.sun_path, sizeof address.sun_path - 1);
        EXPECT_EQ(bind(m_listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(listen(m_listener, 50), 0);
    }
    ~FakeWindow()
    {
        for (const SeenClient& client : clients)
            close(client.descriptor);
        close(m_listener);
        std::filesystem::remove(m_path);
    }
    FakeWindow(const FakeWindow&) = delete;
    FakeWindow& operator=(const FakeWindow&) = delete;

    /// Takes what comes until the condition holds. False if that takes too long.
    template <typename Condition> bool takeUntil(Condition condition)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > end)
                return false;
            takeSome();
        }
        return true;
    }
    /// Takes everything of so many clients, until they have closed.
    bool takeAll(std::size_t count = 1)
    {
        return takeUntil([&] {
            std::size_t closed = 0;
            for (const SeenClient& client : clients)
                closed += client.isClosed ? 1 : 0;
            return closed >= count;
        });
    }
    bool takeErrors(std::size_t count)
    {
        return takeUntil([&] { return !clients.empty() && clients.back().errorCount >= count; });
    }
    /// Takes until each error has come or is told to be missing.
    bool takeAccountOf(std::size_t count)
    {
        return takeUntil([&] {
            return !clients.empty() && clients.back().errorCount + clients.back().droppedCount >= count;
        });
    }
    void send(const ui::messages::Message& message)
    {
        const auto size = ssize_t{sizeof message};
        EXPECT_EQ(::send(clients.back().descriptor, message.data(), sizeof message, MSG_NOSIGNAL), size);
    }

    std::vector<SeenClient> clients;

private:
    void takeSome()
    {
        std::vector<pollfd> waitFor{{m_listener, POLLIN, 0}};
        for (const SeenClient& client : clients)
            waitFor.push_back({client.isClosed ? -1 : client.descriptor, POLLIN, 0});
        poll(waitFor.data(), waitFor.size(), 50);
        for (std::size_t i = 1; i < waitFor.size(); ++i) {
            if (waitFor[i].revents != 0)
                take(clients[i - 1]);
        }
        const int connection = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (connection >= 0)
            clients.emplace_back().descriptor = connection;
    }
    static void take(SeenClient& client)
    {
        static char buffer[1 << 18];
        const ssize_t size = recv(client.descriptor, buffer, sizeof buffer, 0);
        if (size <= 0) {
            client.isClosed = true;
            EXPECT_EQ(client.rest, "") << "the last record is whole";
            close(client.descriptor);
            client.descriptor = -1;
            return;
        }
        client.rest.append(buffer, static_cast<std::size_t>(size));
        std::size_t at = 0;
        for (; at + ui::messages::recordSize <= client.rest.size(); at += ui::messages::recordSize) {
            ui::messages::Message message;
            client.rest.copy(message.data(), ui::messages::recordSize, at);
            client.errorCount += message.rawType() == 9 ? 1 : 0;
            const std::size_t textAt = message.type() == ui::messages::Type::GlError ? 12 : 8;
            std::string text(message.text(textAt));
            if (message.rawType() == 7 && text.find(" dropped here: ") != std::string::npos) {
                std::string digits = text.substr(0, text.find(' '));
                std::erase(digits, ',');
                client.droppedCount += std::stoul(digits);
            }
            client.records.push_back({message.rawType(), message.frame(), std::move(text)});
        }
        client.rest.erase(0, at);
    }

    std::filesystem::path m_path;
    int m_listener;
};
