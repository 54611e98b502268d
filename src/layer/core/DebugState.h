#pragma once

#include "GlTypes.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace layer {

/// What the debug output of OpenGL ES (GL_KHR_debug) sorts messages by.
struct DebugMessageKind {
    GLenum source = gl::none;
    GLenum type = gl::none;
    GLuint id = 0;
    GLenum severity = gl::none;
};

/// Debug output as the program sees it: its callback, its filters, its log. The driver's own belongs to the
/// layer, which lets everything through there and hands on what the program would have got.
class DebugState {
public:
    bool output = false;
    bool synchronous = false;
    GLDEBUGPROC callback = nullptr;
    const void* userParam = nullptr;

    DebugState();

    /// Hands a message of that many bytes, with a NUL somewhere behind them, to the program's callback or
    /// log, if it wants it.
    void deliver(const DebugMessageKind& kind, const GLchar* message, std::size_t length);

    /// As glDebugMessageControl() with arguments that are valid.
    void control(GLenum source, GLenum type, GLenum severity, GLsizei count, const GLuint* ids, bool enabled);
    /// A group keeps the filters as they were.
    void pushGroup() { m_groups.push_back(m_groups.back()); }
    void popGroup();

    /// As glGetDebugMessageLog() with arguments that are valid: how many messages were taken out.
    GLuint takeLog(GLuint count, GLsizei bufferSize, GLenum* sources, GLenum* types, GLuint* ids,
        GLenum* severities, GLsizei* lengths, GLchar* log);
    /// The switch of a capability of debug output; null for another capability.
    bool* switchOf(GLenum capability);
    /// The answer to a query of debug output; nothing for one of something else.
    std::optional<std::int64_t> state(GLenum name);

private:
    struct Rule {
        GLenum source;
        GLenum type;
        GLenum severity;
        GLuint id;
        bool hasId;
        bool enabled;

        bool covers(const DebugMessageKind& kind) const;
        bool asks(const Rule& other) const;
    };
    struct Logged {
        DebugMessageKind kind;
        std::string text;
    };

    bool isEnabled(const DebugMessageKind& kind) const;
    void add(const Rule& rule);

    /// The rules of each group; of those that cover a message the last one holds.
    std::vector<std::vector<Rule>> m_groups;
    std::deque<Logged> m_log;
};

/// What the driver calls; its parameter is the context.
void hostMessage(GLenum source, GLenum type, GLuint id, GLenum severity, GLsizei length,
    const GLchar* message, const void* context);

} // namespace layer
