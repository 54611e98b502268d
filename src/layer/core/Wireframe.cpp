#include "Wireframe.h"

#include "DeviceGate.h"
#include "Process.h"
#include "Records.h"
#include "TextBuffer.h"

#include <array>
#include <cstring>
#include <numeric>
#include <optional>
#include <utility>

namespace layer {

namespace {

/// Beyond this many vertices a draw call stays as it is, so that the layer's memory is bounded.
constexpr GLsizei vertexLimit = 1 << 22;

using Vertices = std::vector<std::uint32_t>;

void tellOnce(Context& context, std::string_view reason)
{
    if (std::exchange(context.warnedOfWireframe, true))
        return;
    TextBuffer<512> text;
    text << "Context " << context.number << ": some of what it draws is not shown as a wireframe, since "
         << reason << '.';
    records::information(text.text());
}

GLint integer(const Context& context, GLenum name)
{
    GLint value = 0;
    context.host->function<void (*)(GLenum, GLint*)>(Fn::glGetIntegerv)(name, &value);
    return value;
}

bool isEnabled(const Context& context, GLenum capability)
{
    return context.esVersion >= 30
        && context.host->function<GLboolean (*)(GLenum)>(Fn::glIsEnabled)(capability) != 0;
}

/// Reads bytes of the buffer that is bound to a target; nothing where it cannot be read.
std::optional<std::vector<char>> readBuffer(
    const Context& context, GLenum target, std::uintptr_t from, std::size_t size)
{
    const auto parameter = [&](GLenum name) {
        GLint value = 0;
        context.host->function<void (*)(GLenum, GLenum, GLint*)>(Fn::glGetBufferParameteriv)(
            target, name, &value);
        return value;
    };
    const auto whole = static_cast<std::uintptr_t>(parameter(gl::bufferSize));
    if (parameter(gl::bufferMapped) != 0 || from > whole || size > whole - from)
        return std::nullopt;
    const bool isCore = context.esVersion >= 30;
    const auto map = context.host->function<void* (*)(GLenum, GLintptr, GLsizeiptr, GLbitfield)>(
        isCore ? Fn::glMapBufferRange : Fn::glMapBufferRangeEXT);
    const auto unmap =
        context.host->function<GLboolean (*)(GLenum)>(isCore ? Fn::glUnmapBuffer : Fn::glUnmapBufferOES);
    const void* mapped =
        map(target, static_cast<GLintptr>(from), static_cast<GLsizeiptr>(size), gl::mapReadBit);
    if (!mapped)
        return std::nullopt;
    std::vector<char> bytes(size);
    std::memcpy(bytes.data(), mapped, size);
    unmap(target);
    return bytes;
}

std::size_t sizeOf(GLenum indexType)
{
    return indexType == gl::unsignedByte ? 1
        : indexType == gl::unsignedShort ? 2
        : indexType == gl::unsignedInt   ? 4
                                         : 0;
}

template <typename Index> void widen(const char* bytes, const Draw& draw, bool restarts, Vertices& vertices)
{
    for (GLsizei i = 0; i < draw.count; ++i) {
        Index index;
        std::memcpy(&index, bytes + static_cast<std::size_t>(i) * sizeof index, sizeof index);
        const bool isRestart = restarts && index == static_cast<Index>(-1);
        vertices.push_back(isRestart ? restartIndex : index + static_cast<std::uint32_t>(draw.baseVertex));
    }
}

/// The vertices of a draw call in its order; nothing where its indices cannot be read.
std::optional<Vertices> verticesOf(const Context& context, const Draw& draw, bool restarts)
{
    Vertices vertices;
    if (draw.indexType == gl::none) {
        vertices.resize(static_cast<std::size_t>(draw.count));
        std::iota(vertices.begin(), vertices.end(), static_cast<std::uint32_t>(draw.first));
        return vertices;
    }
    const std::size_t size = sizeOf(draw.indexType) * static_cast<std::size_t>(draw.count);
    const char* bytes = static_cast<const char*>(draw.indices);
    std::optional<std::vector<char>> read;
    if (integer(context, gl::elementArrayBufferBinding) != 0) {
        read =
            readBuffer(context, gl::elementArrayBuffer, reinterpret_cast<std::uintptr_t>(draw.indices), size);
        bytes = read ? read->data() : nullptr;
    }
    if (size == 0 || !bytes)
        return std::nullopt;
    vertices.reserve(static_cast<std::size_t>(draw.count));
    if (draw.indexType == gl::unsignedByte)
        widen<std::uint8_t>(bytes, draw, restarts, vertices);
    else if (draw.indexType == gl::unsignedShort)
        widen<std::uint16_t>(bytes, draw, restarts, vertices);
    else
        widen<std::uint32_t>(bytes, draw, restarts, vertices);
    return vertices;
}

/// Binds the layer's own buffer of indices, and the program's again when it ends.
class LineBuffer {
public:
    LineBuffer(Context& context, const Vertices& lines)
        : m_context(context)
        , m_before(integer(context, gl::elementArrayBufferBinding))
    {
        if (context.lineIndices == 0)
            context.host->function<void (*)(GLsizei, GLuint*)>(Fn::glGenBuffers)(1, &context.lineIndices);
        bind(context.lineIndices);
        context.host->function<void (*)(GLenum, GLsizeiptr, const void*, GLenum)>(Fn::glBufferData)(
            gl::elementArrayBuffer, static_cast<GLsizeiptr>(lines.size() * sizeof lines.front()),
            lines.data(), gl::streamDraw);
    }
    ~LineBuffer() { bind(static_cast<GLuint>(m_before)); }
    LineBuffer(const LineBuffer&) = delete;
    LineBuffer& operator=(const LineBuffer&) = delete;

private:
    void bind(GLuint buffer)
    {
        m_context.host->function<void (*)(GLenum, GLuint)>(Fn::glBindBuffer)(gl::elementArrayBuffer, buffer);
    }

    Context& m_context;
    GLint m_before;
};

void drawLines(const Context& context, GLsizei count, const Draw& draw)
{
    if (draw.baseInstance != 0)
        context.host->function<void (*)(GLenum, GLsizei, GLenum, const void*, GLsizei, GLuint)>(
            Fn::glDrawElementsInstancedBaseInstanceEXT)(
            gl::lines, count, gl::unsignedInt, nullptr, draw.instances, draw.baseInstance);
    else if (draw.instances != 1)
        context.host->function<void (*)(GLenum, GLsizei, GLenum, const void*, GLsizei)>(
            context.esVersion >= 30 ? Fn::glDrawElementsInstanced : Fn::glDrawElementsInstancedEXT)(
            gl::lines, count, gl::unsignedInt, nullptr, draw.instances);
    else
        context.host->function<void (*)(GLenum, GLsizei, GLenum, const void*)>(Fn::glDrawElements)(
            gl::lines, count, gl::unsignedInt, nullptr);
}

/// Whether it is a mode whose edges are known. That patches have none is told.
bool hasEdges(Context& context, GLenum mode)
{
    constexpr GLenum patches = 0x000E;
    if (mode == patches)
        tellOnce(context, "tessellated patches cannot be turned into lines");
    return mode == gl::triangles || mode == gl::triangleStrip || mode == gl::triangleFan;
}

} // namespace

Vertices edgesOf(GLenum mode, const Vertices& vertices, bool restarts)
{
    Vertices lines;
    std::size_t start = 0; // Of the strip, the fan or the row of triangles.
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        if (restarts && vertices[i] == restartIndex) {
            start = i + 1;
            continue;
        }
        const std::size_t place = i - start;
        if (place < 2 || (mode == gl::triangles && place % 3 != 2))
            continue;
        const std::uint32_t first = vertices[mode == gl::triangleFan ? start : i - 2];
        const std::uint32_t second = vertices[i - 1];
        const std::uint32_t third = vertices[i];
        // A strip or fan has drawn the edge of its first two vertices with the triangle before.
        if (mode == gl::triangles || place == 2)
            lines.insert(lines.end(), {first, second});
        lines.insert(lines.end(), {second, third, third, first});
    }
    return lines;
}

bool wantsLines(const Context& context, Fn function)
{
    if (!context.seenCurrent || !context.isEs)
        return false;
    const ring::Writer* to = writer();
    if (!to || !to->isWireframe())
        return false;
    // What a device lacks is refused as ever.
    return !context.gate || !context.gate->blocks(function);
}

bool drawAsLines(Context& context, const Draw& draw)
{
    if (!hasEdges(context, draw.mode) || draw.count < 3 || draw.first < 0 || draw.instances < 1)
        return false;
    if (draw.count > vertexLimit) {
        tellOnce(context, "it has more than four million vertices");
        return false;
    }
    if (draw.indexType != gl::none
        && isBeyondLimits(context, Fn::glDrawElements,
            {argument(draw.mode), argument(draw.count), argument(draw.indexType), argument(draw.indices)}))
        return false;
    const Unseen unseen(context);
    if (context.esVersion >= 30 && integer(context, gl::transformFeedbackActive) != 0
        && integer(context, gl::transformFeedbackPaused) == 0) {
        tellOnce(context, "its triangles are captured by transform feedback");
        return false;
    }
    const bool restarts = draw.indexType != gl::none && isEnabled(context, gl::primitiveRestartFixedIndex);
    const std::optional<Vertices> vertices = verticesOf(context, draw, restarts);
    if (!vertices) {
        tellOnce(context, "its indices cannot be read back from their buffer");
        return false;
    }
    const Vertices lines = edgesOf(draw.mode, *vertices, restarts);
    if (lines.empty())
        return false;
    const LineBuffer buffer(context, lines);
    unseen.error();
    drawLines(context, static_cast<GLsizei>(lines.size()), draw);
    if (unseen.error() == gl::none)
        return true;
    tellOnce(context, "the driver refuses lines there; a geometry shader may want triangles");
    return false;
}

bool drawIndirectAsLines(Context& context, GLenum mode, GLenum indexType, const void* indirect)
{
    if (!hasEdges(context, mode))
        return false;
    // Arrays: count, instances, first, base instance; elements: count, instances, first index, base vertex,
    // base instance.
    std::array<GLuint, 5> numbers{};
    const std::size_t size = indexType == gl::none ? 4 * sizeof(GLuint) : sizeof numbers;
    {
        const Unseen unseen(context);
        if (integer(context, gl::drawIndirectBufferBinding) == 0)
            return false;
        const auto bytes =
            readBuffer(context, gl::drawIndirectBuffer, reinterpret_cast<std::uintptr_t>(indirect), size);
        if (!bytes) {
            tellOnce(context, "the numbers of an indirect draw call cannot be read back from their buffer");
            return false;
        }
        std::memcpy(numbers.data(), bytes->data(), size);
    }
    Draw draw{mode, static_cast<GLsizei>(numbers[0]), 0, indexType};
    draw.instances = static_cast<GLsizei>(numbers[1]);
    if (indexType == gl::none) {
        draw.first = static_cast<GLint>(numbers[2]);
        draw.baseInstance = numbers[3];
    } else {
        // An offset into a buffer travels as a pointer. NOLINTNEXTLINE(performance-no-int-to-ptr)
        draw.indices = reinterpret_cast<const void*>(sizeOf(indexType) * std::uintptr_t{numbers[2]});
        draw.baseVertex = static_cast<GLint>(numbers[3]);
        draw.baseInstance = numbers[4];
    }
    return drawAsLines(context, draw);
}

} // namespace layer
