#pragma once

#include "Host.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace layer {

/// What a version of OpenGL ES has with some extensions, as the registry says.
class Availability {
public:
    Availability(int esVersion, const std::vector<std::string>& extensions);

    bool has(Fn function) const { return hasAny(sourcesOf(function)); }
    /// Values that the registry does not know for OpenGL ES are left to drivers.
    bool has(GLenum enumerant) const;
    /// All enumerants that it lacks.
    std::vector<GLenum> missingEnumerants() const;

    /// "needs OpenGL ES 3.0 or GL_OES_vertex_array_object".
    std::string needOf(Fn function) const { return needText(sourcesOf(function)); }
    std::string needOf(GLenum enumerant) const { return needText(sourcesOf(enumerant)); }

private:
    /// A version or an extension, and the families of versions in which it counts; see the generated table.
    using Sources = std::span<const std::uint16_t>;

    static Sources sourcesOf(Fn function);
    static Sources sourcesOf(GLenum enumerant);
    bool hasAny(Sources sources) const;
    std::string needText(Sources sources) const;

    int m_version;
    unsigned m_family; ///< 1 for OpenGL ES 1.1, 2 for later versions.
    std::vector<bool> m_extensions; ///< By the numbers of the generated table.
};

} // namespace layer
