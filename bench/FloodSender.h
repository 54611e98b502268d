#pragma once

#include <QProcess>

#include <memory>
#include <optional>
#include <vector>

namespace flood {

/// What senders send: all kinds of records, or GL errors with their numbers as `cap`.
enum class Content { Mixed, Errors };

/// Number of the first error's enumerant; those behind it count up. No enumerant of OpenGL ES is so large.
constexpr int firstWrongEnumerant = 0x1000001;

/// Other processes that send records, each over a connection of its own. They end with the object.
class Senders {
public:
    /// Starts some that connect to a name, and send so many records each at a rate; 0 is as fast as it goes.
    Senders(int number, const QString& socketName, int records, int rate, Content content = Content::Mixed);
    ~Senders();

    bool haveFailed() const;

private:
    std::vector<std::unique_ptr<QProcess>> m_processes;
};

/// To be called first in main(): where this process has been started as a sender, it sends, and the result is
/// its exit code.
std::optional<int> runAsSender(int argc, char** argv);

} // namespace flood
