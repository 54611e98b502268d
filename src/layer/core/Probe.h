#pragma once

#include "Host.h"

#include <cstdint>
#include <string>
#include <vector>

namespace layer {

/// What the machine offers beside what the program asks for: its desktop OpenGL, found with a context of the
/// layer's own.
struct HostFacts {
    std::uint32_t glVersion = 0; ///< Code of the version catalogue; 0 where there is no desktop OpenGL.
    std::uint32_t glslVersion = 0; ///< The same for its shading language.
    std::string glVersionText;
    std::vector<std::uint32_t> glExtensions; ///< Codes of the catalogue of host extensions, rising.
};

/// Asked once in a process, on an initialised display. Changes nothing that the program can see.
const HostFacts& hostFacts(Host& host, EGLDisplay display);

/// Sends the system report of this machine, once in a process.
void sendReport(Host& host, EGLDisplay display);

} // namespace layer
