#include "Checks.h"

#include "CallText.h"
#include "DebugState.h"
#include "DeviceGate.h"
#include "GlEnumerants.h"
#include "Process.h"
#include "Records.h"

#include <utility>

namespace layer {

namespace {

thread_local EGLint eglError = EGL_SUCCESS;

void appendLine(CallText& text, std::string_view line)
{
    if (!line.empty())
        text << line << '\n';
}

/// The call reached a function that the device lacks, or that it has and the host lacks.
GLenum refuseFunction(Context& context, Fn function, std::initializer_list<Argument> arguments)
{
    const DeviceGate& gate = *context.gate;
    context.mustCheck = context.watched && !context.usesDebugOutput;
    std::string why = "not available on " + gate.table().name + ": " + gate.availability().needOf(function);
    if (gate.availability().has(function))
        why = gate.missingOnHost(function, arguments);
    refuseGl(context, function, arguments, gl::invalidOperation, why);
    return gl::invalidOperation;
}

} // namespace

void refuseGl(Context& context, Fn function, std::initializer_list<Argument> arguments, GLenum code,
    std::string_view why)
{
    CallText text;
    text << ::gl::errorName(code) << " in " << rowOf(function).name << ": " << why;
    const std::string message(text.text());
    context.keep(code);
    if (context.usesDebugOutput)
        context.debug->deliver({gl::debugSourceApi, gl::debugTypeError, code, gl::debugSeverityHigh},
            message.c_str(), message.size());
    text << '\n';
    appendCall(text, function, arguments);
    if (context.watched)
        records::glError(code, rowOf(function).name, text.text());
}

void setEglError(EGLint code)
{
    eglError = code;
}

void refuseEgl(Fn function, std::initializer_list<Argument> arguments, EGLint code, std::string_view why)
{
    eglError = code;
    if (!options().errors)
        return;
    CallText text;
    appendEglName(text, code);
    text << ": " << why << "\nin ";
    appendCall(text, function, arguments);
    records::error(text.text());
}

GLenum checkGl(Context& context, Fn function, std::initializer_list<Argument> arguments)
{
    if (std::exchange(context.refusedCall, false))
        return refuseFunction(context, function, arguments);
    context.mustCheck = !context.usesDebugOutput;
    const std::string_view said(context.pending.text.data(), std::exchange(context.pending.size, 0));
    const GLenum code = context.takeHostError();
    if (code == gl::none && said.empty())
        return code;
    CallText text;
    appendLine(text, said);
    if (context.gate)
        appendLine(text, context.gate->missingOnHost(function, arguments));
    appendCall(text, function, arguments);
    if (code == gl::none) {
        records::debugMessage(gl::debugSourceApi, gl::debugTypeError, 0, gl::debugSeverityHigh, text.text());
        return code;
    }
    context.keep(code);
    records::glError(code, rowOf(function).name, text.text());
    return code;
}

void checkStrayErrors(Context& context)
{
    const GLenum code = context.takeHostError();
    if (code == gl::none)
        return;
    context.keep(code);
    records::glError(
        code, "", "Some call since the last one that was looked after; the driver did not say which.");
}

EGLint checkEgl(Host& host, Fn function, std::initializer_list<Argument> arguments)
{
    eglError = host.function<EGLint (*)()>(Fn::eglGetError)();
    if (eglError != EGL_SUCCESS && options().errors) {
        CallText text;
        appendEglName(text, eglError);
        text << " in ";
        appendCall(text, function, arguments);
        records::error(text.text());
    }
    return eglError;
}

namespace hooks {

EGLint eglGetError()
{
    return std::exchange(eglError, EGL_SUCCESS);
}

GLenum glGetError()
{
    Context& context = currentContext();
    if (context.watched)
        checkStrayErrors(context);
    const GLenum kept = std::exchange(context.error, gl::none);
    return kept != gl::none || context.watched ? kept : generated::glGetError();
}

} // namespace hooks

} // namespace layer
