#include "WindowSocket.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace launcher {

WindowSocket::WindowSocket()
{
    const char* folder = std::getenv("TMPDIR");
    std::error_code error;
    m_path =
        std::filesystem::absolute(folder && *folder != '\0' ? folder : "/tmp", error).string() + "/Corvale";
}

std::optional<WindowSocket::Identity> WindowSocket::identity() const
{
    constexpr std::int64_t second = 1'000'000'000;
    struct stat status { };
    // A socket that was forwarded from elsewhere may stand behind a link.
    if (stat(m_path.c_str(), &status) != 0 || !S_ISSOCK(status.st_mode) || status.st_uid != getuid())
        return std::nullopt;
    return Identity{status.st_dev, status.st_ino, status.st_ctim.tv_sec * second + status.st_ctim.tv_nsec};
}

Descriptor WindowSocket::connect()
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (m_path.size() >= sizeof address.sun_path)
        return {};
    std::memcpy(address.sun_path, m_path.c_str(), m_path.size() + 1);
    Descriptor connection(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    m_isBusy = false;
    if (!connection)
        return {};
    if (::connect(connection.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        m_isBusy = errno == EAGAIN;
        return {};
    }
    ucred peer{};
    socklen_t size = sizeof peer;
    // Anybody can listen in a common folder.
    if (getsockopt(connection.number(), SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0 || peer.uid != getuid())
        return {};
    constexpr int wanted = 1 << 20; // bytes
    setsockopt(connection.number(), SOL_SOCKET, SO_SNDBUF, &wanted, sizeof wanted);
    return connection;
}

} // namespace launcher
