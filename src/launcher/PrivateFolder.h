#pragma once

#include "Descriptor.h"

#include <string>

namespace launcher {

/// A folder of this launcher alone: for its control socket and for the files that its programs look into. It
/// goes with the launcher, unless a process still has it in its environment.
class PrivateFolder {
public:
    /// Makes a folder below XDG_RUNTIME_DIR, else TMPDIR, else /tmp, after it has removed those that dead
    /// launchers left there. path() is empty where none could be made.
    PrivateFolder();
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;

    const std::string& path() const { return m_path; }
    std::string socketPath() const { return m_path + "/control"; }

    /// Writes a file of the folder. False if that fails.
    bool write(const std::string& name, const std::string& content) const;

private:
    bool makeIn(const std::string& parent);

    std::string m_path;
    Descriptor m_lock; ///< Held as long as the launcher lives.
};

/// Whether a process of this user has a text in its environment.
bool isInAnEnvironment(const std::string& text);

} // namespace launcher
