#pragma once

#include "PrivateFolder.h"

#include <memory>
#include <string>

#include <sys/types.h>

namespace checks {

/// A display that nobody sees, of a server that lives as long as this. What is started meanwhile finds it in
/// its environment.
class HeadlessDisplay {
public:
    HeadlessDisplay() = default;
    ~HeadlessDisplay();
    HeadlessDisplay(const HeadlessDisplay&) = delete;
    HeadlessDisplay& operator=(const HeadlessDisplay&) = delete;

    /// "x11", "wayland", or empty for what is installed. False with a reason().
    bool start(const std::string& kind);
    const std::string& reason() const { return m_reason; }
    /// Such as "Xvfb :99".
    const std::string& description() const { return m_description; }

private:
    bool startX11();
    bool startWayland();

    pid_t m_server = 0;
    std::unique_ptr<launcher::PrivateFolder> m_folder; ///< For the sockets, where there is no folder yet.
    std::string m_reason;
    std::string m_description;
};

} // namespace checks
