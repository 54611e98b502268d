#pragma once

#include <QLockFile>

/// Held while the servers are set up, so that two instances that start at once do not take each other's
/// half-made socket for one that a crash has left behind.
class StartUpLock {
public:
    /// Waits a second at most for an instance of this user that is starting, and for nobody else. Without the
    /// lock the start goes on: it guards against a rare coincidence only.
    StartUpLock();
    void release() { m_file.unlock(); }

private:
    QLockFile m_file;
};
