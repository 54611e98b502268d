#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// The structure of a console's text up to some place in it: which frames are open, whether a heading came
/// last, and whether the current line is empty. What writes entries asks it what has to stand before and
/// behind each part of them.
class ConsoleOutline {
public:
    /// Frames inside frames at most. A message that opens a frame and never leaves it puts the next one
    /// inside; each takes room from the text's width, and a document nested without end could not be laid
    /// out.
    static constexpr std::size_t deepestFrame = 8;

    struct HeadingStart {
        std::size_t framesToLeave; ///< All that are open, where no deeper one may be opened.
        bool isSetOff; ///< An empty line keeps the heading apart from the text before it.
    };
    enum class LineBreak {
        EndsFrame, ///< Leaves the innermost frame and goes to a new line.
        EndsLine, ///< Goes to a new line.
        EmptyLine, ///< Goes to a new line from one without text.
    };

    /// A heading with the frame below it. The entry that it belongs to is kept as long as the frame is open.
    HeadingStart openFrame(std::string_view entry = {});
    LineBreak breakLine();
    /// Text on a line of its own, which may end with a line that is empty again. True when it begins a new
    /// line.
    bool addText(bool endsWithEmptyLine);
    /// Returns the number of frames that were open.
    std::size_t leaveFrames();
    /// All text has been removed. A heading that came last still counts as such.
    void removeText();

    void setLastWasHeading(bool wasHeading) { m_lastWasHeading = wasHeading; }
    bool lastWasHeading() const { return m_lastWasHeading; }
    bool isLineEmpty() const { return m_isLineEmpty; }
    bool isInFrame() const { return !m_openFrames.empty(); }
    /// The entries whose frames are open, from the outermost frame to the innermost.
    const std::vector<std::string>& openFrames() const { return m_openFrames; }
    /// Has a function give the entries of open frames from what is kept of them.
    void replaceOpenFrames(const std::function<std::string(const std::string&)>& replacement);

private:
    std::vector<std::string> m_openFrames;
    bool m_lastWasHeading = false;
    bool m_isLineEmpty = true;
};
