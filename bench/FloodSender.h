#pragma once

#include <QProcess>

#include <memory>
#include <optional>
#include <vector>

namespace flood {

/// Other processes that send records, each over a connection of its own. They end with the object.
class Senders {
public:
    /// Starts some that connect to a name, and send so many records each at a rate; 0 is as fast as it goes.
    Senders(int number, const QString& socketName, int records, int rate);
    ~Senders();

    bool haveFailed() const;

private:
    std::vector<std::unique_ptr<QProcess>> m_processes;
};

/// To be called first in main(): where this process has been started as a sender, it sends, and the result is
/// its exit code.
std::optional<int> runAsSender(int argc, char** argv);

} // namespace flood
