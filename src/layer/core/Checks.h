#pragma once

#include "Argument.h"
#include "Context.h"

#include <initializer_list>
#include <string_view>

namespace layer {

/// Looks for an error of the call that has just returned, reports it, and keeps it for the program's
/// glGetError(). Returns its code; gl::none where there is none.
GLenum checkGl(Context& context, Fn function, std::initializer_list<Argument> arguments);

/// The same for a function of EGL: the program's eglGetError() gets it. Returns the code.
EGLint checkEgl(Host& host, Fn function, std::initializer_list<Argument> arguments);

/// Refuses a call of OpenGL in the name of a device: the program gets the error, its debug callback and the
/// window get the reason.
void refuseGl(Context& context, Fn function, std::initializer_list<Argument> arguments, GLenum code,
    std::string_view why);
/// The same for a function of EGL.
void refuseEgl(Fn function, std::initializer_list<Argument> arguments, EGLint code, std::string_view why);
/// Lets the program's eglGetError() find what a function of the layer's own found.
void setEglError(EGLint code);

/// Errors that no call was blamed for: functions that nothing stands in front of, or drivers that said
/// nothing.
void checkStrayErrors(Context& context);

} // namespace layer
