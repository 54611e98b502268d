// The functions of debug output, where the layer stands between the program's and the driver's.
#include "Checks.h"
#include "Context.h"
#include "DebugState.h"
#include "DeviceGate.h"
#include "Records.h"

#include <cstring>

namespace layer::hooks {

namespace {

/// The program's debug output where the layer keeps it; null where the driver keeps it itself, and on a
/// device that has none, so that what asks for it is refused.
DebugState* kept(const Context& context)
{
    const bool isMissing = context.gate && context.gate->blocks(gl::debugOutput);
    return context.usesDebugOutput && !isMissing ? context.debug.get() : nullptr;
}

std::string_view textOf(const GLchar* text, GLsizei length)
{
    if (!text)
        return {};
    return {text, length < 0 ? std::strlen(text) : static_cast<std::size_t>(length)};
}

/// EXT_debug_marker counts a length of 0 as unknown, too.
std::string_view markerOf(const GLchar* text, GLsizei length)
{
    return textOf(text, length > 0 ? length : -1);
}

bool* switchOf(const Context& context, GLenum capability)
{
    DebugState* debug = kept(context);
    return debug ? debug->switchOf(capability) : nullptr;
}

/// False where the driver is to take it.
bool setCallback(Fn function, GLDEBUGPROC callback, const void* userParam)
{
    const Context& context = currentContext();
    DebugState* debug = kept(context);
    if (!debug || (context.gate && context.gate->blocks(function)))
        return false;
    debug->callback = callback;
    debug->userParam = userParam;
    return true;
}

/// The driver looks at the arguments: it is told to let through what it lets through already, and raises what
/// there is to raise.
template <typename Call>
void control(Fn function, Call call, GLenum source, GLenum type, GLenum severity, GLsizei count,
    const GLuint* ids, GLboolean enabled)
{
    Context& context = currentContext();
    if (!kept(context)) {
        call(source, type, severity, count, ids, enabled);
        return;
    }
    context.function<void (*)(GLenum, GLenum, GLenum, GLsizei, const GLuint*, GLboolean)>(function)(
        source, type, severity, count, ids, 1);
    if (!context.mustCheck
        || checkGl(context, function,
               {argument(source), argument(type), argument(severity), argument(count), argument(ids),
                   argument(enabled)})
            == gl::none)
        context.debug->control(source, type, severity, count, ids, enabled != 0);
}

void recordInserted(GLenum source, GLenum type, GLuint id, GLenum severity, std::string_view text)
{
    if (type == gl::debugTypeMarker) {
        records::identified(source, id, text);
        records::lineBreak();
    } else {
        records::debugMessage(source, type, id, severity, text);
    }
}

/// Calls the driver and says whether it found no error.
template <typename... Parameters, typename... Arguments>
bool succeeds(Context& context, Fn function, void (*)(Parameters...), Arguments... arguments)
{
    context.function<void (*)(Parameters...)>(function)(arguments...);
    return !context.mustCheck || checkGl(context, function, {argument(arguments)...}) == gl::none;
}

void insert(
    Fn function, GLenum source, GLenum type, GLuint id, GLenum severity, GLsizei length, const GLchar* text)
{
    Context& context = currentContext();
    if (succeeds(
            context, function, &generated::glDebugMessageInsert, source, type, id, severity, length, text)
        && context.watched)
        recordInserted(source, type, id, severity, textOf(text, length));
}

void push(Fn function, GLenum source, GLuint id, GLsizei length, const GLchar* message)
{
    Context& context = currentContext();
    if (!succeeds(context, function, &generated::glPushDebugGroup, source, id, length, message)
        || !context.watched)
        return;
    context.debug->pushGroup();
    records::identified(source, id, textOf(message, length));
}

void pop(Fn function)
{
    Context& context = currentContext();
    if (!succeeds(context, function, &generated::glPopDebugGroup) || !context.watched)
        return;
    context.debug->popGroup();
    records::lineBreak();
}

GLuint takeLog(Fn function, GLuint count, GLsizei bufSize, GLenum* sources, GLenum* types, GLuint* ids,
    GLenum* severities, GLsizei* lengths, GLchar* messageLog)
{
    Context& context = currentContext();
    // The driver's log is empty where the layer takes its messages; it still raises what there is to raise.
    const auto taken = context.function<decltype(&generated::glGetDebugMessageLog)>(function)(
        count, bufSize, sources, types, ids, severities, lengths, messageLog);
    const bool failed = context.mustCheck
        && checkGl(context, function,
               {argument(count), argument(bufSize), argument(sources), argument(types), argument(ids),
                   argument(severities), argument(lengths), argument(messageLog)})
            != gl::none;
    if (failed || !kept(context))
        return taken;
    return context.debug->takeLog(count, bufSize, sources, types, ids, severities, lengths, messageLog);
}

bool getPointer(GLenum pname, void** params)
{
    const DebugState* debug = kept(currentContext());
    if (!debug || !params)
        return false;
    if (pname == gl::debugCallbackFunction)
        *params = reinterpret_cast<void*>(debug->callback);
    else if (pname == gl::debugCallbackUserParam)
        *params = const_cast<void*>(debug->userParam);
    else
        return false;
    return true;
}

/// Markers are recorded where the device has them, also where the driver has not.
bool isRecorded(Fn function)
{
    const Context& context = currentContext();
    return context.watched && (!context.gate || context.gate->availability().has(function));
}

} // namespace

void glEnable(GLenum cap)
{
    if (bool* state = switchOf(currentContext(), cap))
        *state = true;
    else
        generated::glEnable(cap);
}

void glDisable(GLenum cap)
{
    if (bool* state = switchOf(currentContext(), cap))
        *state = false;
    else
        generated::glDisable(cap);
}

GLboolean glIsEnabled(GLenum cap)
{
    const bool* state = switchOf(currentContext(), cap);
    return state ? GLboolean{*state} : generated::glIsEnabled(cap);
}

void glGetPointerv(GLenum pname, void** params)
{
    if (!getPointer(pname, params))
        generated::glGetPointerv(pname, params);
}

void glGetPointervKHR(GLenum pname, void** params)
{
    if (!getPointer(pname, params))
        generated::glGetPointervKHR(pname, params);
}

void glDebugMessageCallback(GLDEBUGPROC callback, const void* userParam)
{
    if (!setCallback(Fn::glDebugMessageCallback, callback, userParam))
        generated::glDebugMessageCallback(callback, userParam);
}

void glDebugMessageCallbackKHR(GLDEBUGPROCKHR callback, const void* userParam)
{
    if (!setCallback(Fn::glDebugMessageCallbackKHR, callback, userParam))
        generated::glDebugMessageCallbackKHR(callback, userParam);
}

void glDebugMessageControl(
    GLenum source, GLenum type, GLenum severity, GLsizei count, const GLuint* ids, GLboolean enabled)
{
    control(Fn::glDebugMessageControl, &generated::glDebugMessageControl, source, type, severity, count, ids,
        enabled);
}

void glDebugMessageControlKHR(
    GLenum source, GLenum type, GLenum severity, GLsizei count, const GLuint* ids, GLboolean enabled)
{
    control(Fn::glDebugMessageControlKHR, &generated::glDebugMessageControlKHR, source, type, severity, count,
        ids, enabled);
}

void glDebugMessageInsert(
    GLenum source, GLenum type, GLuint id, GLenum severity, GLsizei length, const GLchar* buf)
{
    insert(Fn::glDebugMessageInsert, source, type, id, severity, length, buf);
}

void glDebugMessageInsertKHR(
    GLenum source, GLenum type, GLuint id, GLenum severity, GLsizei length, const GLchar* buf)
{
    insert(Fn::glDebugMessageInsertKHR, source, type, id, severity, length, buf);
}

GLuint glGetDebugMessageLog(GLuint count, GLsizei bufSize, GLenum* sources, GLenum* types, GLuint* ids,
    GLenum* severities, GLsizei* lengths, GLchar* messageLog)
{
    return takeLog(
        Fn::glGetDebugMessageLog, count, bufSize, sources, types, ids, severities, lengths, messageLog);
}

GLuint glGetDebugMessageLogKHR(GLuint count, GLsizei bufSize, GLenum* sources, GLenum* types, GLuint* ids,
    GLenum* severities, GLsizei* lengths, GLchar* messageLog)
{
    return takeLog(
        Fn::glGetDebugMessageLogKHR, count, bufSize, sources, types, ids, severities, lengths, messageLog);
}

void glPushDebugGroup(GLenum source, GLuint id, GLsizei length, const GLchar* message)
{
    push(Fn::glPushDebugGroup, source, id, length, message);
}

void glPushDebugGroupKHR(GLenum source, GLuint id, GLsizei length, const GLchar* message)
{
    push(Fn::glPushDebugGroupKHR, source, id, length, message);
}

void glPopDebugGroup()
{
    pop(Fn::glPopDebugGroup);
}

void glPopDebugGroupKHR()
{
    pop(Fn::glPopDebugGroupKHR);
}

void glInsertEventMarkerEXT(GLsizei length, const GLchar* marker)
{
    generated::glInsertEventMarkerEXT(length, marker);
    if (isRecorded(Fn::glInsertEventMarkerEXT))
        recordInserted(gl::debugSourceApplication, gl::debugTypeMarker, 0, gl::debugSeverityNotification,
            markerOf(marker, length));
}

void glPushGroupMarkerEXT(GLsizei length, const GLchar* marker)
{
    generated::glPushGroupMarkerEXT(length, marker);
    if (isRecorded(Fn::glPushGroupMarkerEXT))
        records::identified(gl::debugSourceApplication, 0, markerOf(marker, length));
}

void glPopGroupMarkerEXT()
{
    generated::glPopGroupMarkerEXT();
    if (isRecorded(Fn::glPopGroupMarkerEXT))
        records::lineBreak();
}

} // namespace layer::hooks
