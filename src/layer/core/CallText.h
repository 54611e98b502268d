#pragma once

#include "Argument.h"
#include "Host.h"
#include "TextBuffer.h"

#include <initializer_list>

namespace layer {

using CallText = TextBuffer<2048>;

/// Adds a call as a programmer would write it, with the names of enumerants where they are known:
/// "glTexParameteri(target = GL_TEXTURE_2D, pname = GL_TEXTURE_MIN_FILTER, param = 9729)".
void appendCall(CallText& text, Fn function, std::initializer_list<Argument> arguments);

/// The name of an EGL error, such as "EGL_BAD_MATCH"; its number in hexadecimal for one that has none.
void appendEglName(CallText& text, EGLint value);

} // namespace layer
