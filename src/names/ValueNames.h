#pragma once

#include <cstdint>
#include <string>
#include <string_view>

struct EGLAttribKey;

/// What the user reads for the values and keys that profiles store as texts. A text that no table knows is
/// its own name. Numbers are decimal; blanks around them and a plus sign are skipped.
namespace value_names {

/// "EGL_NONE" for "12344"; other 32-bit numbers in plain decimal.
std::string eglValue(std::string_view value);
/// The same by the attribute's kind: a number for counts and sizes, names for the others. The bits of a mask
/// are joined by "|".
std::string eglValue(const EGLAttribKey& attribute, std::int32_t value);
/// "EGL_ALPHA_SIZE" for "12321".
std::string eglAttribute(std::string_view attribute);
/// "OpenGL ES 2.0" for "2" and "20".
std::string esApi(std::string_view version);
/// "GL_SAMPLES" for "samples".
std::string esCapability(std::string_view xmlName);
/// "GL_RGBA" for "6408".
std::string glValue(std::string_view value);
/// The same by the kind of the capability with that element name: a number for limits, counts, and the parts
/// of compound capabilities, names for the others.
std::string glValue(std::string_view xmlName, std::string_view value);
/// "GL_TRUE" for "1", "GL_FALSE" for "0".
std::string glBoolean(std::string_view value);

} // namespace value_names
