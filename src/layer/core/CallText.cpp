#include "CallText.h"

#include "GlEnumerants.h"

#include <algorithm>
#include <bit>
#include <iterator>

namespace layer {

namespace {

struct EglName {
    EGLint value;
    const char* name;
};
constexpr EglName eglNames[] = {
#include "LayerEglNames.inc"
};

void appendGlName(CallText& text, std::uint64_t bits)
{
    // Numbers this small stand for too many things to have one name.
    constexpr std::uint64_t leastNamed = 0x100;
    const char* name = bits < leastNamed ? "" : ::gl::enumerantName(static_cast<std::int32_t>(bits));
    if (*name)
        text << name;
    else
        text.hexadecimal(bits & 0xFFFFFFFFU);
}

void appendMode(CallText& text, std::uint64_t bits)
{
    static constexpr const char* modes[] = {"GL_POINTS", "GL_LINES", "GL_LINE_LOOP", "GL_LINE_STRIP",
        "GL_TRIANGLES", "GL_TRIANGLE_STRIP", "GL_TRIANGLE_FAN", "GL_QUADS", "GL_QUAD_STRIP", "GL_POLYGON",
        "GL_LINES_ADJACENCY", "GL_LINE_STRIP_ADJACENCY", "GL_TRIANGLES_ADJACENCY",
        "GL_TRIANGLE_STRIP_ADJACENCY", "GL_PATCHES"};
    if (bits < std::size(modes))
        text << modes[bits];
    else
        appendGlName(text, bits);
}

void appendTextureUnit(CallText& text, std::uint64_t bits)
{
    constexpr std::uint64_t mostUnits = 256;
    if (bits - gl::texture0 < mostUnits)
        text << "GL_TEXTURE" << bits - gl::texture0;
    else
        appendGlName(text, bits);
}

void appendArgument(CallText& text, char kind, std::uint64_t bits)
{
    switch (kind) {
    case 'e':
    case 'n':
        appendGlName(text, bits);
        break;
    case 'x':
        appendTextureUnit(text, bits);
        break;
    case 'm':
        appendMode(text, bits);
        break;
    case 'E':
        appendEglName(text, static_cast<EGLint>(bits));
        break;
    case 't':
        if (bits > 1)
            text << bits;
        else
            text << (bits == 1 ? "true" : "false");
        break;
    case 'i':
        text << static_cast<std::int64_t>(bits);
        break;
    case 'u':
        text << bits;
        break;
    case 'f':
        text << std::bit_cast<double>(bits);
        break;
    default:
        if (bits == 0 && kind == 'p')
            text << "null";
        else
            text.hexadecimal(bits);
        break;
    }
}

} // namespace

void appendCall(CallText& text, Fn function, std::initializer_list<Argument> arguments)
{
    const FunctionRow& row = rowOf(function);
    text << row.name << '(';
    std::string_view parameters = row.parameters;
    bool first = true;
    for (const Argument& argument : arguments) {
        const std::size_t end = parameters.find(' ');
        if (end == std::string_view::npos)
            break;
        text << (first ? "" : ", ") << parameters.substr(1, end - 1) << " = ";
        appendArgument(text, parameters.front(), argument.bits);
        parameters.remove_prefix(end + 1);
        first = false;
    }
    text << ')';
}

void appendEglName(CallText& text, EGLint value)
{
    const auto* found = std::ranges::lower_bound(eglNames, value, {}, &EglName::value);
    if (found != std::end(eglNames) && found->value == value)
        text << found->name;
    else
        text.hexadecimal(static_cast<std::uint32_t>(value));
}

} // namespace layer
