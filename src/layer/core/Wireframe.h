#pragma once

#include "Context.h"

#include <cstdint>
#include <vector>

namespace layer {

/// A draw call, whatever function it came by.
struct Draw {
    GLenum mode = gl::triangles;
    GLsizei count = 0; ///< Vertices or indices.
    GLint first = 0; ///< Of arrays.
    GLenum indexType = gl::none; ///< gl::none for arrays.
    const void* indices = nullptr; ///< Memory of the program, or an offset into its buffer.
    GLint baseVertex = 0;
    GLsizei instances = 1;
    GLuint baseInstance = 0;
};

/// Whether the window asks for wireframes now, and the function that draws is one that the program has.
bool wantsLines(const Context& context, Fn function);

/// Draws the edges of triangles in place of them. False where nothing was drawn and the driver is to draw as
/// the program said: what is no triangle, and what cannot be done here, of which the window is told once a
/// context.
bool drawAsLines(Context& context, const Draw& draw);
/// The same for draw calls whose numbers stand in a buffer.
bool drawIndirectAsLines(Context& context, GLenum mode, GLenum indexType, const void* indirect);

/// The edges of triangles, strips or fans as pairs of vertices. A restart index ends a strip or fan, and a
/// triangle that is not complete is left out.
std::vector<std::uint32_t> edgesOf(GLenum mode, const std::vector<std::uint32_t>& vertices, bool restarts);
/// Stands for a restart in the vertices of edgesOf().
inline constexpr std::uint32_t restartIndex = 0xFFFFFFFF;

} // namespace layer
