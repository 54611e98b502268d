#include "ConsoleOutline.h"

#include <utility>

ConsoleOutline::HeadingStart ConsoleOutline::openFrame(std::string_view entry)
{
    const std::size_t framesToLeave = m_openFrames.size() >= deepestFrame ? leaveFrames() : 0;
    m_openFrames.emplace_back(entry);
    m_isLineEmpty = true;
    return {framesToLeave, !std::exchange(m_lastWasHeading, true)};
}

ConsoleOutline::LineBreak ConsoleOutline::breakLine()
{
    const bool wasEmpty = std::exchange(m_isLineEmpty, true);
    if (!m_openFrames.empty()) {
        m_openFrames.pop_back();
        return LineBreak::EndsFrame;
    }
    return wasEmpty ? LineBreak::EmptyLine : LineBreak::EndsLine;
}

bool ConsoleOutline::addText(bool endsWithEmptyLine)
{
    m_lastWasHeading = false;
    return !std::exchange(m_isLineEmpty, endsWithEmptyLine);
}

std::size_t ConsoleOutline::leaveFrames()
{
    const std::size_t count = m_openFrames.size();
    if (count > 0)
        m_isLineEmpty = true;
    m_openFrames.clear();
    return count;
}

void ConsoleOutline::removeText()
{
    m_openFrames.clear();
    m_isLineEmpty = true;
}

void ConsoleOutline::replaceOpenFrames(const std::function<std::string(const std::string&)>& replacement)
{
    for (std::string& frame : m_openFrames)
        frame = replacement(frame);
}
