// Shaders and programs, where a device has less than the host.
#include "DebugState.h"
#include "DeviceGate.h"
#include "LinkLimits.h"
#include "Records.h"
#include "ShaderVersion.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>

namespace layer::hooks {

namespace {

/// Why programs were not linked, which stands in their logs.
class LinkLogs {
public:
    void set(const Context& context, GLuint program, const std::string& text)
    {
        const std::scoped_lock lock(m_mutex);
        m_logs[{context.shareGroup, program}] = text;
    }
    void remove(const Context& context, GLuint program)
    {
        const std::scoped_lock lock(m_mutex);
        m_logs.erase({context.shareGroup, program});
    }
    std::string find(const Context& context, GLuint program)
    {
        const std::scoped_lock lock(m_mutex);
        const auto found = m_logs.find({context.shareGroup, program});
        return found == m_logs.end() ? "" : found->second;
    }

private:
    std::mutex m_mutex;
    std::map<std::pair<std::int32_t, GLuint>, std::string> m_logs;
};

LinkLogs& linkLogs()
{
    static auto* const logs = new LinkLogs;
    return *logs;
}

/// A failure that is no error of OpenGL: the window and the program's debug callback hear of it.
void tell(Context& context, std::string_view function, const std::string& refusal)
{
    const std::string text = std::string(function) + ": " + refusal;
    if (context.usesDebugOutput)
        context.debug->deliver({gl::debugSourceShaderCompiler, gl::debugTypeError, 1, gl::debugSeverityHigh},
            text.c_str(), text.size());
    if (context.watched)
        records::debugMessage(
            gl::debugSourceShaderCompiler, gl::debugTypeError, 1, gl::debugSeverityHigh, text);
}

void setSource(Host& host, GLuint shader, const std::string& source)
{
    const GLchar* text = source.c_str();
    host.function<void (*)(GLuint, GLsizei, const GLchar* const*, const GLint*)>(Fn::glShaderSource)(
        shader, 1, &text, nullptr);
}

std::string sourceOf(Host& host, GLuint shader)
{
    GLint size = 0;
    host.function<void (*)(GLuint, GLenum, GLint*)>(Fn::glGetShaderiv)(shader, gl::shaderSourceLength, &size);
    std::string source(static_cast<std::size_t>(std::max(size, 0)), '\0');
    if (!source.empty())
        host.function<void (*)(GLuint, GLsizei, GLsizei*, GLchar*)>(Fn::glGetShaderSource)(
            shader, size, nullptr, source.data());
    return source.substr(0, source.find('\0'));
}

bool isLinked(const Context& context, GLuint program)
{
    GLint status = 0;
    context.host->function<void (*)(GLuint, GLenum, GLint*)>(Fn::glGetProgramiv)(
        program, gl::linkStatus, &status);
    return status != 0;
}

/// Lets the host link a program once more with a shader in place of one of its own that no driver compiles,
/// so that it is what every failed program is.
void failLink(const Context& context, GLuint program)
{
    Host& host = *context.host;
    GLuint own = 0;
    host.function<decltype(&generated::glGetAttachedShaders)>(Fn::glGetAttachedShaders)(
        program, 1, nullptr, &own);
    GLint type = 0;
    host.function<void (*)(GLuint, GLenum, GLint*)>(Fn::glGetShaderiv)(own, gl::shaderType, &type);
    const auto attach = host.function<void (*)(GLuint, GLuint)>(Fn::glAttachShader);
    const auto detach = host.function<void (*)(GLuint, GLuint)>(Fn::glDetachShader);
    const GLuint failing = host.function<GLuint (*)(GLenum)>(Fn::glCreateShader)(static_cast<GLenum>(type));
    setSource(host, failing, failingShader("replaced"));
    host.function<void (*)(GLuint)>(Fn::glCompileShader)(failing);
    detach(program, own);
    attach(program, failing);
    host.function<void (*)(GLuint)>(Fn::glLinkProgram)(program);
    detach(program, failing);
    attach(program, own);
    host.function<void (*)(GLuint)>(Fn::glDeleteShader)(failing);
}

bool isGated(const Context& context, Fn function)
{
    return context.gate && !context.gate->blocks(function);
}

} // namespace

void glCompileShader(GLuint shader)
{
    Context& context = currentContext();
    if (isGated(context, Fn::glCompileShader)) {
        const Unseen unseen(context);
        const std::string source = sourceOf(*context.host, shader);
        const std::string refusal = shaderRefusal(context.gate->table(), context.gate->api(), source);
        if (!refusal.empty()) {
            setSource(*context.host, shader, failingShader(refusal));
            context.host->function<void (*)(GLuint)>(Fn::glCompileShader)(shader);
            setSource(*context.host, shader, source);
            tell(context, "glCompileShader", refusal);
            return;
        }
    }
    generated::glCompileShader(shader);
}

GLuint glCreateShaderProgramv(GLenum type, GLsizei count, const GLchar* const* strings)
{
    Context& context = currentContext();
    std::string source;
    for (GLsizei i = 0; isGated(context, Fn::glCreateShaderProgramv) && strings && i < count; ++i)
        source += strings[i] ? strings[i] : "";
    const std::string refusal =
        source.empty() ? "" : shaderRefusal(context.gate->table(), context.gate->api(), source);
    if (refusal.empty())
        return generated::glCreateShaderProgramv(type, count, strings);
    tell(context, "glCreateShaderProgramv", refusal);
    const std::string failing = failingShader(refusal);
    const GLchar* text = failing.c_str();
    return generated::glCreateShaderProgramv(type, 1, &text);
}

void glLinkProgram(GLuint program)
{
    generated::glLinkProgram(program);
    Context& context = currentContext();
    if (!isGated(context, Fn::glLinkProgram))
        return;
    const Unseen unseen(context);
    linkLogs().remove(context, program);
    if (!isLinked(context, program))
        return;
    const std::string refusal = linkRefusal(context, program);
    if (refusal.empty())
        return;
    failLink(context, program);
    linkLogs().set(context, program, refusal);
    tell(context, "glLinkProgram", refusal);
}

void glDeleteProgram(GLuint program)
{
    const Context& context = currentContext();
    if (context.gate)
        linkLogs().remove(context, program);
    generated::glDeleteProgram(program);
}

void glGetProgramiv(GLuint program, GLenum name, GLint* value)
{
    generated::glGetProgramiv(program, name, value);
    const Context& context = currentContext();
    if (name != gl::infoLogLength || !value || !isGated(context, Fn::glGetProgramiv))
        return;
    const std::string log = linkLogs().find(context, program);
    if (!log.empty())
        *value = static_cast<GLint>(log.size()) + 1;
}

void glGetProgramInfoLog(GLuint program, GLsizei size, GLsizei* length, GLchar* text)
{
    const Context& context = currentContext();
    const std::string log =
        isGated(context, Fn::glGetProgramInfoLog) ? linkLogs().find(context, program) : std::string();
    if (log.empty() || size < 0 || !text) {
        generated::glGetProgramInfoLog(program, size, length, text);
        return;
    }
    const std::size_t copied = size == 0 ? 0 : std::min(log.size(), static_cast<std::size_t>(size) - 1);
    std::memcpy(text, log.data(), copied);
    if (size > 0)
        text[copied] = '\0';
    if (length)
        *length = static_cast<GLsizei>(copied);
}

} // namespace layer::hooks
