// A program of OpenGL ES without a window that asks its driver what it is told to, line by line, and knows
// nothing of the layer. Each line is a query; its answer is one line, too.
#include <array>
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include <EGL/egl.h>
#include <EGL/eglext.h>

namespace {

using Enumerant = std::uint32_t;

EGLDisplay display = EGL_NO_DISPLAY;
std::vector<EGLConfig> configs;

template <typename Function> Function gl(const char* name)
{
    return reinterpret_cast<Function>(eglGetProcAddress(name));
}

Enumerant error()
{
    return gl<Enumerant (*)()>("glGetError")();
}

/// Whatever was not written shows.
template <typename Value> using Values = std::array<Value, 4200>;

template <typename Value> std::string shown(const Values<Value>& values, std::size_t count)
{
    std::ostringstream text;
    text.precision(9);
    for (std::size_t i = 0; i < count; ++i)
        text << (i > 0 ? " " : "") << +values[i];
    if (const Enumerant code = error())
        text << " error " << std::hex << code;
    return text.str();
}

template <typename Value>
std::string query(const char* function, Enumerant name, std::size_t count, Value untouched)
{
    Values<Value> values;
    values.fill(untouched);
    gl<void (*)(Enumerant, Value*)>(function)(name, values.data());
    return shown(values, count);
}

std::string indexed(Enumerant name, std::size_t count)
{
    Values<std::int32_t> values{};
    for (Enumerant i = 0; i < count; ++i)
        gl<void (*)(Enumerant, Enumerant, std::int32_t*)>("glGetIntegeri_v")(name, i, &values[i]);
    return shown(values, count);
}

std::string makeContext(int version)
{
    static EGLContext before = EGL_NO_CONTEXT;
    const EGLint bit = version < 20 ? EGL_OPENGL_ES_BIT
        : version < 30              ? EGL_OPENGL_ES2_BIT
                                    : EGL_OPENGL_ES3_BIT;
    const std::array<EGLint, 5> wanted{EGL_RENDERABLE_TYPE, bit, EGL_SURFACE_TYPE, 0, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    eglChooseConfig(display, wanted.data(), &config, 1, &count);
    const std::array<EGLint, 5> attributes{
        EGL_CONTEXT_MAJOR_VERSION, version / 10, EGL_CONTEXT_MINOR_VERSION, version % 10, EGL_NONE};
    eglGetError();
    const EGLContext context =
        eglCreateContext(display, count > 0 ? config : configs.at(0), EGL_NO_CONTEXT, attributes.data());
    const EGLint code = eglGetError();
    if (context == EGL_NO_CONTEXT)
        return "refused " + std::to_string(code);
    eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context);
    if (before != EGL_NO_CONTEXT)
        eglDestroyContext(display, before);
    before = context;
    return eglGetError() == EGL_SUCCESS ? "made" : "not current";
}

std::string attribute(std::size_t config, EGLint name)
{
    EGLint value = 0;
    if (eglGetConfigAttrib(display, configs.at(config), name, &value) == EGL_FALSE)
        return "error " + std::to_string(eglGetError());
    return std::to_string(value);
}

std::string precision(Enumerant shader, Enumerant type)
{
    Values<std::int32_t> values{};
    gl<void (*)(Enumerant, Enumerant, std::int32_t*, std::int32_t*)>("glGetShaderPrecisionFormat")(
        shader, type, values.data(), &values[2]);
    return shown(values, 3);
}

std::string samples(Enumerant format)
{
    Values<std::int32_t> values{};
    const auto get =
        gl<void (*)(Enumerant, Enumerant, Enumerant, std::int32_t, std::int32_t*)>("glGetInternalformativ");
    constexpr Enumerant renderbuffer = 0x8D41;
    get(renderbuffer, format, 0x9380, 1, values.data()); // GL_NUM_SAMPLE_COUNTS
    const auto count = static_cast<std::size_t>(values[0]);
    get(renderbuffer, format, 0x80A9, values[0], values.data() + 1); // GL_SAMPLES
    return shown(values, count + 1);
}

std::string call(const std::string& function, Enumerant value)
{
    if (function == "glTexImage2D") {
        gl<void (*)(Enumerant, int, int, int, int, int, Enumerant, Enumerant, const void*)>("glTexImage2D")(
            0x0DE1, 0, 0x1908, static_cast<int>(value), 1, 0, 0x1908, 0x1401, nullptr);
    } else {
        gl<void (*)(Enumerant)>(function.c_str())(value);
    }
    return shown(Values<std::int32_t>{}, 0);
}

std::string text(const unsigned char* answer)
{
    return answer ? reinterpret_cast<const char*>(answer) : "null" + shown(Values<std::int32_t>{}, 0);
}

std::string answer(const std::string& line)
{
    std::istringstream words(line);
    std::string what, function;
    words >> what;
    if (what == "call") {
        Enumerant value = 0;
        words >> function >> value;
        return call(function, value);
    }
    Enumerant first = 0, second = 0;
    words >> first >> second;
    if (what == "context")
        return makeContext(static_cast<int>(first));
    if (what == "int")
        return query<std::int32_t>("glGetIntegerv", first, second, -77);
    if (what == "long")
        return query<std::int64_t>("glGetInteger64v", first, second, -77);
    if (what == "real")
        return query<float>("glGetFloatv", first, second, -77);
    if (what == "truth")
        return query<std::uint8_t>("glGetBooleanv", first, second, 77);
    if (what == "fixed")
        return query<std::int32_t>("glGetFixedv", first, second, -77);
    if (what == "indexed")
        return indexed(first, second);
    if (what == "text")
        return text(gl<const unsigned char* (*)(Enumerant)>("glGetString")(first));
    if (what == "listed")
        return text(gl<const unsigned char* (*)(Enumerant, Enumerant)>("glGetStringi")(first, second));
    if (what == "precision")
        return precision(first, second);
    if (what == "samples")
        return samples(first);
    if (what == "egl")
        return eglQueryString(display, static_cast<EGLint>(first));
    if (what == "configs")
        return std::to_string(configs.size());
    if (what == "attribute")
        return attribute(first, static_cast<EGLint>(second));
    return "what is " + what + "?";
}

} // namespace

int main()
{
    display = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    EGLint count = 0;
    if (!eglInitialize(display, nullptr, nullptr) || !eglGetConfigs(display, nullptr, 0, &count))
        return 77;
    configs.resize(static_cast<std::size_t>(count));
    eglGetConfigs(display, configs.data(), count, &count);
    for (std::string line; std::getline(std::cin, line);)
        std::puts(answer(line).c_str());
    return 0;
}
