#include "DebugState.h"

#include "Context.h"
#include "Records.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace layer {

namespace {

/// GL_MAX_DEBUG_LOGGED_MESSAGES of the drivers that we know.
constexpr std::size_t logLimit = 10;

bool matches(GLenum wanted, GLenum actual)
{
    return wanted == gl::dontCare || wanted == actual;
}

void remember(PendingErrors& pending, std::string_view message)
{
    while (!message.empty() && message.back() == '\n')
        message.remove_suffix(1);
    const bool isFirst = pending.size == 0;
    const std::size_t room = pending.text.size() - pending.size;
    if (room < 2)
        return;
    if (!isFirst)
        pending.text[pending.size++] = '\n';
    const std::size_t length = std::min(message.size(), pending.text.size() - pending.size);
    std::copy_n(message.data(), length, pending.text.data() + pending.size);
    pending.size += length;
}

} // namespace

bool DebugState::Rule::covers(const DebugMessageKind& kind) const
{
    return matches(source, kind.source) && matches(type, kind.type) && matches(severity, kind.severity)
        && (!hasId || id == kind.id);
}

bool DebugState::Rule::asks(const Rule& other) const
{
    return source == other.source && type == other.type && severity == other.severity && hasId == other.hasId
        && id == other.id;
}

DebugState::DebugState()
    : m_groups(1)
{
    // All but those of low severity are enabled at first.
    m_groups.back().push_back({gl::dontCare, gl::dontCare, gl::debugSeverityLow, 0, false, false});
}

bool DebugState::isEnabled(const DebugMessageKind& kind) const
{
    const std::vector<Rule>& rules = m_groups.back();
    const auto last =
        std::find_if(rules.rbegin(), rules.rend(), [&](const Rule& rule) { return rule.covers(kind); });
    return last == rules.rend() || last->enabled;
}

void DebugState::deliver(const DebugMessageKind& kind, const GLchar* message, std::size_t length)
{
    if (!output || !isEnabled(kind))
        return;
    if (callback)
        callback(
            kind.source, kind.type, kind.id, kind.severity, static_cast<GLsizei>(length), message, userParam);
    else if (m_log.size() < logLimit)
        m_log.push_back({kind, std::string(message, length)});
}

void DebugState::control(
    GLenum source, GLenum type, GLenum severity, GLsizei count, const GLuint* ids, bool enabled)
{
    if (count == 0)
        add({source, type, severity, 0, false, enabled});
    for (GLsizei i = 0; i < count; ++i)
        add({source, type, gl::dontCare, ids[i], true, enabled});
}

void DebugState::add(const Rule& rule)
{
    std::vector<Rule>& rules = m_groups.back();
    const bool coversAll = !rule.hasId && rule.source == gl::dontCare && rule.type == gl::dontCare
        && rule.severity == gl::dontCare;
    if (coversAll)
        rules.clear();
    else
        std::erase_if(rules, [&](const Rule& old) { return old.asks(rule); });
    rules.push_back(rule);
}

void DebugState::popGroup()
{
    if (m_groups.size() > 1)
        m_groups.pop_back();
}

bool* DebugState::switchOf(GLenum capability)
{
    if (capability == gl::debugOutput)
        return &output;
    return capability == gl::debugOutputSynchronous ? &synchronous : nullptr;
}

std::optional<std::int64_t> DebugState::state(GLenum name)
{
    if (const bool* isOn = switchOf(name))
        return *isOn ? 1 : 0;
    if (name == gl::debugLoggedMessages)
        return static_cast<std::int64_t>(m_log.size());
    // Of the oldest message with its NUL.
    if (name == gl::debugNextLoggedMessageLength)
        return m_log.empty() ? 0 : static_cast<std::int64_t>(m_log.front().text.size()) + 1;
    return std::nullopt;
}

GLuint DebugState::takeLog(GLuint count, GLsizei bufferSize, GLenum* sources, GLenum* types, GLuint* ids,
    GLenum* severities, GLsizei* lengths, GLchar* log)
{
    GLuint taken = 0;
    std::size_t room = static_cast<std::size_t>(std::max(bufferSize, 0));
    for (; taken < count && !m_log.empty(); ++taken) {
        const Logged& oldest = m_log.front();
        const std::size_t size = oldest.text.size() + 1;
        if (log) {
            if (size > room)
                break;
            std::memcpy(log, oldest.text.c_str(), size);
            log += size;
            room -= size;
        }
        if (sources)
            sources[taken] = oldest.kind.source;
        if (types)
            types[taken] = oldest.kind.type;
        if (ids)
            ids[taken] = oldest.kind.id;
        if (severities)
            severities[taken] = oldest.kind.severity;
        if (lengths)
            lengths[taken] = static_cast<GLsizei>(size);
        m_log.pop_front();
    }
    return taken;
}

void hostMessage(GLenum source, GLenum type, GLuint id, GLenum severity, GLsizei length,
    const GLchar* message, const void* userParam)
{
    auto& context = *static_cast<Context*>(const_cast<void*>(userParam));
    if (context.quiet || !message)
        return;
    const std::string_view text(
        message, length < 0 ? std::strlen(message) : static_cast<std::size_t>(length));
    const bool isOfProgram = source == gl::debugSourceApplication || source == gl::debugSourceThirdParty;
    if (source == gl::debugSourceApi && type == gl::debugTypeError) {
        remember(context.pending, text);
        context.mustCheck = true;
    } else if (!isOfProgram) {
        records::debugMessage(source, type, id, severity, text);
    }
    context.debug->deliver({source, type, id, severity}, message, text.size());
}

} // namespace layer
