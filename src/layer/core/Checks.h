#pragma once

#include "Argument.h"
#include "Context.h"

#include <initializer_list>

namespace layer {

/// Looks for an error of the call that has just returned, reports it, and keeps it for the program's
/// glGetError(). Returns its code; gl::none where there is none.
GLenum checkGl(Context& context, Fn function, std::initializer_list<Argument> arguments);

/// The same for a function of EGL: the program's eglGetError() gets it. Returns the code.
EGLint checkEgl(Host& host, Fn function, std::initializer_list<Argument> arguments);

/// Errors that no call was blamed for: functions that nothing stands in front of, or drivers that said
/// nothing.
void checkStrayErrors(Context& context);

} // namespace layer
