#pragma once

#include "Descriptor.h"

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <poll.h>
#include <unistd.h>

namespace launcher {

/// What the program writes on its standard output and error. It is passed on to the launcher's own streams,
/// never faster than those take it, and given away line by line.
class ProgramOutput {
public:
    /// Gets a line without its end. Longer lines than a record holds come in pieces.
    using TakeLine = std::function<void(std::string_view)>;

    ProgramOutput();

    /// What is to be the program's standard output and error.
    std::array<int, 2> programEnds() const;
    /// To be called once the program has them.
    void closeProgramEnds();

    /// Reads and passes on what can be now, for a while. If there is no room for lines, nothing is read.
    void transfer(bool hasRoom, const TakeLine& takeLine);
    /// Adds what is to be waited for, except for room.
    void addTo(std::vector<pollfd>& waitFor) const;

    /// The program has ended: what it has written until now is still to be read, whoever else writes.
    void noteEnd();
    /// Whether that is read and passed on.
    bool isRead() const;
    /// Whether nobody can write any more either.
    bool isClosed() const;
    /// Gives away what has come of the last lines.
    void finish(const TakeLine& takeLine);

private:
    struct Stream {
        int own; ///< The launcher's stream.
        bool isOwnGone = false;
        Descriptor reading; ///< None once nobody writes any more.
        Descriptor programEnd;
        std::string unpassed; ///< Read, but not yet passed on.
        std::string line; ///< The beginning of a line.
        std::size_t left = 0; ///< Bytes to be read, once the program has ended.

        explicit Stream(int stream);
        /// False if nothing moves now.
        bool passOn();
        bool read(const TakeLine& takeLine);
        void cutLines(std::string_view bytes, const TakeLine& takeLine);
        void give(std::string_view text, const TakeLine& takeLine) const;
    };

    std::array<Stream, 2> m_streams{Stream(STDOUT_FILENO), Stream(STDERR_FILENO)};
    bool m_hasRoom = true;
};

} // namespace launcher
