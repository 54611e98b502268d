// The functions that draw, where the window may ask for wireframes.
#include "Wireframe.h"

namespace layer::hooks {

void glDrawArrays(GLenum mode, GLint first, GLsizei count)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawArrays) || !drawAsLines(context, {mode, count, first}))
        generated::glDrawArrays(mode, first, count);
}

void glDrawArraysInstanced(GLenum mode, GLint first, GLsizei count, GLsizei instances)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawArraysInstanced)
        || !drawAsLines(context, {mode, count, first, gl::none, nullptr, 0, instances}))
        generated::glDrawArraysInstanced(mode, first, count, instances);
}

void glDrawArraysInstancedANGLE(GLenum mode, GLint first, GLsizei count, GLsizei instances)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawArraysInstancedANGLE)
        || !drawAsLines(context, {mode, count, first, gl::none, nullptr, 0, instances}))
        generated::glDrawArraysInstancedANGLE(mode, first, count, instances);
}

void glDrawArraysInstancedEXT(GLenum mode, GLint first, GLsizei count, GLsizei instances)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawArraysInstancedEXT)
        || !drawAsLines(context, {mode, count, first, gl::none, nullptr, 0, instances}))
        generated::glDrawArraysInstancedEXT(mode, first, count, instances);
}

void glDrawArraysInstancedBaseInstanceEXT(
    GLenum mode, GLint first, GLsizei count, GLsizei instances, GLuint baseInstance)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawArraysInstancedBaseInstanceEXT)
        || !drawAsLines(context, {mode, count, first, gl::none, nullptr, 0, instances, baseInstance}))
        generated::glDrawArraysInstancedBaseInstanceEXT(mode, first, count, instances, baseInstance);
}

void glDrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawElements) || !drawAsLines(context, {mode, count, 0, type, indices}))
        generated::glDrawElements(mode, count, type, indices);
}

void glDrawElementsInstanced(GLenum mode, GLsizei count, GLenum type, const void* indices, GLsizei instances)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawElementsInstanced)
        || !drawAsLines(context, {mode, count, 0, type, indices, 0, instances}))
        generated::glDrawElementsInstanced(mode, count, type, indices, instances);
}

void glDrawElementsInstancedANGLE(
    GLenum mode, GLsizei count, GLenum type, const void* indices, GLsizei instances)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawElementsInstancedANGLE)
        || !drawAsLines(context, {mode, count, 0, type, indices, 0, instances}))
        generated::glDrawElementsInstancedANGLE(mode, count, type, indices, instances);
}

void glDrawElementsInstancedEXT(
    GLenum mode, GLsizei count, GLenum type, const void* indices, GLsizei instances)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawElementsInstancedEXT)
        || !drawAsLines(context, {mode, count, 0, type, indices, 0, instances}))
        generated::glDrawElementsInstancedEXT(mode, count, type, indices, instances);
}

void glDrawElementsInstancedBaseInstanceEXT(
    GLenum mode, GLsizei count, GLenum type, const void* indices, GLsizei instances, GLuint baseInstance)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawElementsInstancedBaseInstanceEXT)
        || !drawAsLines(context, {mode, count, 0, type, indices, 0, instances, baseInstance}))
        generated::glDrawElementsInstancedBaseInstanceEXT(
            mode, count, type, indices, instances, baseInstance);
}

void glDrawElementsInstancedBaseVertex(
    GLenum mode, GLsizei count, GLenum type, const void* indices, GLsizei instances, GLint baseVertex)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawElementsInstancedBaseVertex)
        || !drawAsLines(context, {mode, count, 0, type, indices, baseVertex, instances}))
        generated::glDrawElementsInstancedBaseVertex(mode, count, type, indices, instances, baseVertex);
}

void glDrawElementsInstancedBaseVertexEXT(
    GLenum mode, GLsizei count, GLenum type, const void* indices, GLsizei instances, GLint baseVertex)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawElementsInstancedBaseVertexEXT)
        || !drawAsLines(context, {mode, count, 0, type, indices, baseVertex, instances}))
        generated::glDrawElementsInstancedBaseVertexEXT(mode, count, type, indices, instances, baseVertex);
}

void glDrawElementsInstancedBaseVertexOES(
    GLenum mode, GLsizei count, GLenum type, const void* indices, GLsizei instances, GLint baseVertex)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawElementsInstancedBaseVertexOES)
        || !drawAsLines(context, {mode, count, 0, type, indices, baseVertex, instances}))
        generated::glDrawElementsInstancedBaseVertexOES(mode, count, type, indices, instances, baseVertex);
}

void glDrawElementsInstancedBaseVertexBaseInstanceEXT(GLenum mode, GLsizei count, GLenum type,
    const void* indices, GLsizei instances, GLint baseVertex, GLuint baseInstance)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawElementsInstancedBaseVertexBaseInstanceEXT)
        || !drawAsLines(context, {mode, count, 0, type, indices, baseVertex, instances, baseInstance}))
        generated::glDrawElementsInstancedBaseVertexBaseInstanceEXT(
            mode, count, type, indices, instances, baseVertex, baseInstance);
}

void glDrawElementsBaseVertex(GLenum mode, GLsizei count, GLenum type, const void* indices, GLint baseVertex)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawElementsBaseVertex)
        || !drawAsLines(context, {mode, count, 0, type, indices, baseVertex}))
        generated::glDrawElementsBaseVertex(mode, count, type, indices, baseVertex);
}

void glDrawElementsBaseVertexEXT(
    GLenum mode, GLsizei count, GLenum type, const void* indices, GLint baseVertex)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawElementsBaseVertexEXT)
        || !drawAsLines(context, {mode, count, 0, type, indices, baseVertex}))
        generated::glDrawElementsBaseVertexEXT(mode, count, type, indices, baseVertex);
}

void glDrawElementsBaseVertexOES(
    GLenum mode, GLsizei count, GLenum type, const void* indices, GLint baseVertex)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawElementsBaseVertexOES)
        || !drawAsLines(context, {mode, count, 0, type, indices, baseVertex}))
        generated::glDrawElementsBaseVertexOES(mode, count, type, indices, baseVertex);
}

void glDrawRangeElements(
    GLenum mode, GLuint start, GLuint end, GLsizei count, GLenum type, const void* indices)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawRangeElements)
        || !drawAsLines(context, {mode, count, 0, type, indices}))
        generated::glDrawRangeElements(mode, start, end, count, type, indices);
}

void glDrawRangeElementsBaseVertex(
    GLenum mode, GLuint start, GLuint end, GLsizei count, GLenum type, const void* indices, GLint baseVertex)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawRangeElementsBaseVertex)
        || !drawAsLines(context, {mode, count, 0, type, indices, baseVertex}))
        generated::glDrawRangeElementsBaseVertex(mode, start, end, count, type, indices, baseVertex);
}

void glDrawRangeElementsBaseVertexEXT(
    GLenum mode, GLuint start, GLuint end, GLsizei count, GLenum type, const void* indices, GLint baseVertex)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawRangeElementsBaseVertexEXT)
        || !drawAsLines(context, {mode, count, 0, type, indices, baseVertex}))
        generated::glDrawRangeElementsBaseVertexEXT(mode, start, end, count, type, indices, baseVertex);
}

void glDrawRangeElementsBaseVertexOES(
    GLenum mode, GLuint start, GLuint end, GLsizei count, GLenum type, const void* indices, GLint baseVertex)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawRangeElementsBaseVertexOES)
        || !drawAsLines(context, {mode, count, 0, type, indices, baseVertex}))
        generated::glDrawRangeElementsBaseVertexOES(mode, start, end, count, type, indices, baseVertex);
}

void glDrawArraysIndirect(GLenum mode, const void* indirect)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawArraysIndirect)
        || !drawIndirectAsLines(context, mode, gl::none, indirect))
        generated::glDrawArraysIndirect(mode, indirect);
}

void glDrawElementsIndirect(GLenum mode, GLenum type, const void* indirect)
{
    Context& context = currentContext();
    if (!wantsLines(context, Fn::glDrawElementsIndirect)
        || !drawIndirectAsLines(context, mode, type, indirect))
        generated::glDrawElementsIndirect(mode, type, indirect);
}

void glMultiDrawArraysEXT(GLenum mode, const GLint* first, const GLsizei* count, GLsizei primcount)
{
    if (!wantsLines(currentContext(), Fn::glMultiDrawArraysEXT)) {
        generated::glMultiDrawArraysEXT(mode, first, count, primcount);
        return;
    }
    for (GLsizei i = 0; i < primcount; ++i)
        glDrawArrays(mode, first[i], count[i]);
}

void glMultiDrawElementsEXT(
    GLenum mode, const GLsizei* count, GLenum type, const void* const* indices, GLsizei primcount)
{
    if (!wantsLines(currentContext(), Fn::glMultiDrawElementsEXT)) {
        generated::glMultiDrawElementsEXT(mode, count, type, indices, primcount);
        return;
    }
    for (GLsizei i = 0; i < primcount; ++i)
        glDrawElements(mode, count[i], type, indices[i]);
}

} // namespace layer::hooks
