#pragma once

#include <cstdint>

/// Names of the codes by which the emulation libraries speak of extensions and versions. Codes count from 1.
/// All results are constant texts; nothing is allocated.
namespace catalogue {

/// Number of OpenGL ES extensions; their codes are 1 to this.
extern const std::uint32_t esExtensionCount;
/// Number of host OpenGL extensions; their codes are 1 to this.
extern const std::uint32_t hostExtensionCount;

/// Whether an OpenGL ES extension name is given as profiles and programs write it ("GL_OES_depth24") or bare.
enum class Prefix { With, Without };
/// Whether a shading language version is given as in a #version line ("330") or in full ("GLSL 3.30").
enum class GlslForm { Short, Long };

/// The name of an OpenGL ES extension; "<unknown extension>" for a code that is none.
const char* esExtensionName(std::uint32_t code, Prefix prefix);
/// The name of a host extension with its prefix; "<unknown extension>" for a code that is none.
const char* hostExtensionName(std::uint32_t code);

/// A desktop OpenGL version such as "4.6"; "unknown" for a code that is none.
const char* glVersionName(std::uint32_t code);
/// An OpenGL ES version such as "3.1"; "<Failed to query OpenGL ES version>" for a code that is none.
const char* esVersionName(std::uint32_t code);
/// A desktop shading language version; "<Failed to query GLSL version>" for a code that is none.
const char* glslVersionName(std::uint32_t code, GlslForm form);
/// An OpenGL ES shading language version such as "GLSL ES 3.0"; "<Failed to query GLSL ES version>" for a
/// code that is none.
const char* glslEsVersionName(std::uint32_t code);

} // namespace catalogue
