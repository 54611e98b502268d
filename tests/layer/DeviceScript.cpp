// What a program can ask of EGL and OpenGL ES, one question a line, so that a test can put them to a device.
#include "DeviceScript.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES3/gl32.h>

namespace {

using Words = std::istringstream;

EGLDisplay display = EGL_NO_DISPLAY;
EGLContext context = EGL_NO_CONTEXT;

/// Numbers are written as in C.
std::vector<long> numbersOf(Words& words)
{
    std::vector<long> numbers;
    for (std::string word; words >> word;)
        numbers.push_back(std::stol(word, nullptr, 0));
    return numbers;
}

template <typename Function> Function function(const char* name)
{
    return reinterpret_cast<Function>(eglGetProcAddress(name));
}

std::string hexadecimal(unsigned number)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%#x", number);
    return text.data();
}

std::string eglError()
{
    return "egl " + hexadecimal(static_cast<unsigned>(eglGetError()));
}

EGLConfig configOf(EGLint id)
{
    const std::array<EGLint, 3> wanted{EGL_CONFIG_ID, id, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    eglChooseConfig(display, wanted.data(), &config, 1, &count);
    return config;
}

/// "context MAJOR MINOR [CONFIG_ID]"
std::string makeContext(Words& words)
{
    const std::vector<long> asked = numbersOf(words);
    const std::array<EGLint, 5> attributes{EGL_CONTEXT_MAJOR_VERSION, static_cast<EGLint>(asked[0]),
        EGL_CONTEXT_MINOR_VERSION, static_cast<EGLint>(asked[1]), EGL_NONE};
    EGLConfig config = asked.size() > 2 ? configOf(static_cast<EGLint>(asked[2])) : EGL_NO_CONFIG_KHR;
    context = eglCreateContext(display, config, EGL_NO_CONTEXT, attributes.data());
    if (context == EGL_NO_CONTEXT || !eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context))
        return eglError();
    EGLint id = 0, version = 0;
    eglQueryContext(display, context, EGL_CONFIG_ID, &id);
    eglQueryContext(display, context, EGL_CONTEXT_CLIENT_VERSION, &version);
    return "version " + std::to_string(version) + " config " + std::to_string(id);
}

template <typename Value> std::string getAs(const char* name, const std::vector<long>& asked)
{
    std::vector<Value> values(64);
    if (asked.size() > 2)
        function<void (*)(GLenum, GLuint, Value*)>(name)(
            static_cast<GLenum>(asked[0]), static_cast<GLuint>(asked[2]), values.data());
    else
        function<void (*)(GLenum, Value*)>(name)(static_cast<GLenum>(asked[0]), values.data());
    std::ostringstream out;
    for (std::size_t i = 0; i < static_cast<std::size_t>(asked[1]); ++i)
        out << (i > 0 ? " " : "") << +values[i];
    return out.str();
}

/// "get FUNCTION NAME COUNT [INDEX]"
std::string get(Words& words)
{
    std::string name;
    words >> name;
    const std::vector<long> asked = numbersOf(words);
    if (name.find("Float") != std::string::npos)
        return getAs<GLfloat>(name.c_str(), asked);
    if (name.find("Boolean") != std::string::npos)
        return getAs<GLboolean>(name.c_str(), asked);
    if (name.find("Integer64") != std::string::npos)
        return getAs<GLint64>(name.c_str(), asked);
    return getAs<GLint>(name.c_str(), asked);
}

/// "set FUNCTION TARGET NAME VALUE": a parameter, as a floating-point number or behind a pointer.
std::string set(Words& words)
{
    std::string name;
    words >> name;
    const std::vector<long> a = numbersOf(words);
    const auto target = static_cast<GLenum>(a[0]);
    const auto parameter = static_cast<GLenum>(a[1]);
    const auto number = static_cast<GLfloat>(a[2]);
    const auto integer = static_cast<GLint>(a[2]);
    if (name.ends_with("iv"))
        function<void (*)(GLenum, GLenum, const GLint*)>(name.c_str())(target, parameter, &integer);
    else if (name.ends_with("fv"))
        function<void (*)(GLenum, GLenum, const GLfloat*)>(name.c_str())(target, parameter, &number);
    else
        function<void (*)(GLenum, GLenum, GLfloat)>(name.c_str())(target, parameter, number);
    return hexadecimal(glGetError());
}

/// "call FUNCTION ARGUMENT..." for functions that take whole numbers and pointers.
std::string call(Words& words)
{
    std::string name;
    words >> name;
    std::vector<long> a = numbersOf(words);
    a.resize(10);
    function<void (*)(long, long, long, long, long, long, long, long, long, long)>(name.c_str())(
        a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9]);
    return hexadecimal(glGetError());
}

std::string textOf(const GLubyte* text)
{
    return text ? reinterpret_cast<const char*>(text) : "null " + hexadecimal(glGetError());
}

/// "choose ATTRIBUTE VALUE...": the ids of the configs, in order.
std::string choose(Words& words)
{
    std::vector<EGLint> attributes;
    for (const long number : numbersOf(words))
        attributes.push_back(static_cast<EGLint>(number));
    attributes.push_back(EGL_NONE);
    std::array<EGLConfig, 100> configs{};
    EGLint count = 0;
    if (!eglChooseConfig(display, attributes.data(), configs.data(), 100, &count))
        return eglError();
    std::string ids;
    for (EGLint i = 0, id = 0; i < count; ++i) {
        eglGetConfigAttrib(display, configs[static_cast<std::size_t>(i)], EGL_CONFIG_ID, &id);
        ids += std::to_string(id) + ' ';
    }
    return ids;
}

/// "attribute CONFIG_ID ATTRIBUTE"
std::string attribute(Words& words)
{
    const std::vector<long> asked = numbersOf(words);
    EGLint value = 0;
    if (!eglGetConfigAttrib(
            display, configOf(static_cast<EGLint>(asked[0])), static_cast<EGLint>(asked[1]), &value))
        return eglError();
    return std::to_string(value);
}

/// "surface CONFIG_ID WIDTH [LARGEST]": makes a surface, and says of which config it is and how wide.
std::string surface(Words& words)
{
    const std::vector<long> asked = numbersOf(words);
    const std::array<EGLint, 7> attributes{EGL_WIDTH, static_cast<EGLint>(asked[1]), EGL_HEIGHT, 8,
        EGL_LARGEST_PBUFFER, asked.size() > 2 ? 1 : 0, EGL_NONE};
    const EGLSurface made =
        eglCreatePbufferSurface(display, configOf(static_cast<EGLint>(asked[0])), attributes.data());
    if (made == EGL_NO_SURFACE)
        return eglError();
    EGLint id = 0, width = 0;
    eglQuerySurface(display, made, EGL_CONFIG_ID, &id);
    eglQuerySurface(display, made, EGL_WIDTH, &width);
    return std::to_string(id) + ' ' + std::to_string(width);
}

std::string restOf(Words& words)
{
    std::string rest;
    std::getline(words >> std::ws, rest);
    for (char& letter : rest)
        letter = letter == '|' ? '\n' : letter;
    return rest;
}

GLuint compile(GLenum type, const std::string& source)
{
    const GLuint shader = glCreateShader(type);
    const char* text = source.c_str();
    glShaderSource(shader, 1, &text, nullptr);
    glCompileShader(shader);
    return shader;
}

std::string oneLine(GLint status, std::string log)
{
    for (char& letter : log)
        letter = letter == '\n' ? ' ' : letter;
    return std::to_string(status) + ' ' + log;
}

/// "compile SOURCE" with | for the ends of lines: whether it compiles, what the log says, and whether the
/// source is still the same.
std::string compileShader(Words& words)
{
    const std::string source = restOf(words);
    const GLuint shader = compile(GL_VERTEX_SHADER, source);
    GLint status = -1;
    std::array<char, 1000> log{}, kept{};
    glGetShaderiv(shader, GL_COMPILE_STATUS, &status);
    glGetShaderInfoLog(shader, static_cast<GLsizei>(log.size()), nullptr, log.data());
    glGetShaderSource(shader, static_cast<GLsizei>(kept.size()), nullptr, kept.data());
    return oneLine(status, log.data()) + (kept.data() == source ? "" : "another source");
}

/// "link VERTEX_SHADER @ FRAGMENT_SHADER": the same for a program, and the error of using it.
std::string link(Words& words)
{
    const std::string sources = restOf(words);
    const GLuint program = glCreateProgram();
    glAttachShader(program, compile(GL_VERTEX_SHADER, sources.substr(0, sources.find('@'))));
    glAttachShader(program, compile(GL_FRAGMENT_SHADER, sources.substr(sources.find('@') + 1)));
    glLinkProgram(program);
    GLint status = -1, length = -1, attached = -1;
    glGetProgramiv(program, GL_LINK_STATUS, &status);
    glGetProgramiv(program, GL_INFO_LOG_LENGTH, &length);
    glGetProgramiv(program, GL_ATTACHED_SHADERS, &attached);
    std::string log(static_cast<std::size_t>(length) + 1, '\0');
    glGetProgramInfoLog(program, length, nullptr, log.data());
    glUseProgram(program);
    return oneLine(status, log.substr(0, log.find('\0'))) + ' ' + std::to_string(attached) + ' '
        + hexadecimal(glGetError());
}

} // namespace

void answerQuestions()
{
    display = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    eglInitialize(display, nullptr, nullptr);
    const std::map<std::string, std::function<std::string(Words&)>> answers{
        {"context", &makeContext},
        {"get", &get},
        {"call", &call},
        {"set", &set},
        {"choose", &choose},
        {"attribute", &attribute},
        {"surface", &surface},
        {"compile", &compileShader},
        {"link", &link},
        {"string",
            [](Words& words) {
                return textOf(glGetString(static_cast<GLenum>(numbersOf(words)[0])));
            }},
        {"stringi",
            [](Words& words) {
                return textOf(glGetStringi(GL_EXTENSIONS, static_cast<GLuint>(numbersOf(words)[0])));
            }},
        {"eglString",
            [](Words& words) {
                return std::string(eglQueryString(display, static_cast<EGLint>(numbersOf(words)[0])));
            }},
        {"bind",
            [](Words& words) {
                eglBindAPI(static_cast<EGLenum>(numbersOf(words)[0]));
                return eglError();
            }},
        {"end",
            [](Words&) {
                return std::to_string(eglTerminate(display));
            }},
        {"again",
            [](Words&) {
                eglTerminate(display);
                return std::to_string(eglInitialize(display, nullptr, nullptr));
            }},
    };
    for (std::string line; std::getline(std::cin, line);) {
        Words words(line);
        std::string question;
        words >> question;
        std::puts(answers.at(question)(words).c_str());
        std::fflush(stdout);
    }
}
