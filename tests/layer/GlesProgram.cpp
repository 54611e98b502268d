// A program of OpenGL ES without a window, as programs of users are: it knows nothing of the layer. It tells
// what it sees on standard output, so that runs with and without the layer can be compared.
#define GL_GLEXT_PROTOTYPES
#include "DeviceScript.h"

#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES3/gl32.h>
#include <dlfcn.h>
#include <malloc.h>
#include <unistd.h>

namespace {

EGLDisplay display = EGL_NO_DISPLAY;
EGLConfig config = nullptr;

EGLContext makeContext(EGLContext share = EGL_NO_CONTEXT, std::vector<EGLint> more = {})
{
    std::vector<EGLint> attributes{EGL_CONTEXT_MAJOR_VERSION, 3};
    attributes.insert(attributes.end(), more.begin(), more.end());
    attributes.push_back(EGL_NONE);
    return eglCreateContext(display, config, share, attributes.data());
}

void start()
{
    display = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    const EGLint wanted[] = {
        EGL_RENDERABLE_TYPE, EGL_OPENGL_ES3_BIT, EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_NONE};
    EGLint count = 0;
    if (!eglInitialize(display, nullptr, nullptr) || !eglChooseConfig(display, wanted, &config, 1, &count)
        || count < 1) {
        std::puts("there is no OpenGL ES here");
        std::exit(77);
    }
}

void startCurrent(std::vector<EGLint> more = {})
{
    start();
    if (!eglMakeCurrent(
            display, EGL_NO_SURFACE, EGL_NO_SURFACE, makeContext(EGL_NO_CONTEXT, std::move(more))))
        std::exit(77);
}

void printError(const char* after)
{
    const GLenum first = glGetError();
    std::printf("%s: %#x %#x\n", after, first, glGetError());
}

/// What is undefined without the layer: errors of a context that promised to make none.
void breakPromise()
{
    startCurrent({0x31B3, EGL_TRUE}); // EGL_CONTEXT_OPENGL_NO_ERROR_KHR
    glEnable(0x1234);
}

void makeErrors()
{
    startCurrent();
    glEnable(0x1234);
    printError("enable");
    glTexParameteri(GL_TEXTURE_2D, 0xFFFF, 3);
    glViewport(0, 0, -1, 1);
    printError("the first of two");
    glDrawArrays(99, 0, 3);
    printError("draw");
    glUseProgram(777);
    printError("program");
    const GLuint shader = glCreateShader(GL_VERTEX_SHADER);
    const char* source = "nonsense";
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    printError("no error of OpenGL");
    const auto bind = reinterpret_cast<void (*)(GLenum, GLuint)>(eglGetProcAddress("glBindVertexArrayOES"));
    bind(GL_TEXTURE_2D, 5);
    glBufferData(GL_ARRAY_BUFFER, 4, nullptr, GL_STATIC_DRAW);
    printError("buffer");
    glGetError();
    eglCreateContext(display, config, EGL_NO_CONTEXT,
        std::array<EGLint, 3>{EGL_CONTEXT_MAJOR_VERSION, 9, EGL_NONE}.data());
    std::printf("egl: %#x", static_cast<unsigned>(eglGetError()));
    std::printf(" %#x\n", static_cast<unsigned>(eglGetError()));
}

void GL_APIENTRY onMessage(GLenum source, GLenum type, GLuint id, GLenum severity, GLsizei length,
    const GLchar* message, const void* user)
{
    std::printf("%s: %#x %#x %u %#x %d \"%s\"\n", static_cast<const char*>(user), source, type, id, severity,
        length, message);
}

void insert(GLuint id, GLenum severity = GL_DEBUG_SEVERITY_HIGH)
{
    glDebugMessageInsert(GL_DEBUG_SOURCE_APPLICATION, GL_DEBUG_TYPE_OTHER, id, severity, -1, "a message");
}

void printState()
{
    GLint logged = -1, next = -1, depth = -1;
    void* callback = nullptr;
    glGetIntegerv(GL_DEBUG_LOGGED_MESSAGES, &logged);
    glGetIntegerv(GL_DEBUG_NEXT_LOGGED_MESSAGE_LENGTH, &next);
    glGetIntegerv(GL_DEBUG_GROUP_STACK_DEPTH, &depth);
    glGetPointerv(GL_DEBUG_CALLBACK_FUNCTION, &callback);
    std::printf("state: %d %d %d %d %d %d\n", glIsEnabled(GL_DEBUG_OUTPUT),
        glIsEnabled(GL_DEBUG_OUTPUT_SYNCHRONOUS), logged, next, depth,
        callback == reinterpret_cast<void*>(&onMessage));
}

void printLog(GLsizei size)
{
    std::vector<char> text(2048);
    std::array<GLenum, 4> sources{}, types{}, severities{};
    std::array<GLuint, 4> ids{};
    std::array<GLsizei, 4> lengths{};
    const GLuint count = glGetDebugMessageLog(
        4, size, sources.data(), types.data(), ids.data(), severities.data(), lengths.data(), text.data());
    std::printf("log: %u", count);
    for (GLuint i = 0; i < count && i < 4; ++i)
        std::printf(" [%#x %#x %u %#x %d]", sources[i], types[i], ids[i], severities[i], lengths[i]);
    std::printf(" \"%s\" %#x\n", text.data(), glGetError());
}

void useDebugOutput(bool debugContext)
{
    startCurrent(
        debugContext ? std::vector<EGLint>{EGL_CONTEXT_OPENGL_DEBUG, EGL_TRUE} : std::vector<EGLint>{});
    printState();
    insert(1);
    glEnable(GL_DEBUG_OUTPUT);
    glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
    insert(2);
    insert(3, GL_DEBUG_SEVERITY_LOW);
    glEnable(0x4321);
    printState();
    printLog(20);
    printLog(2000);
    printLog(-1);
    glDebugMessageCallback(&onMessage, "callback");
    printState();
    glPushDebugGroup(GL_DEBUG_SOURCE_APPLICATION, 7, -1, "a group");
    glDebugMessageControl(GL_DONT_CARE, GL_DEBUG_TYPE_ERROR, GL_DONT_CARE, 0, nullptr, GL_FALSE);
    const GLuint silent = 9;
    glDebugMessageControl(
        GL_DEBUG_SOURCE_APPLICATION, GL_DEBUG_TYPE_OTHER, GL_DONT_CARE, 1, &silent, GL_FALSE);
    glEnable(0x4321);
    insert(9);
    insert(10);
    glPopDebugGroup();
    insert(9);
    glPopDebugGroup();
    glDebugMessageControl(GL_DONT_CARE, 0x77, GL_DONT_CARE, 0, nullptr, GL_TRUE);
    printError("control");
    glDebugMessageInsert(GL_DEBUG_SOURCE_API, GL_DEBUG_TYPE_MARKER, 1, GL_DEBUG_SEVERITY_LOW, 3, "not mine");
    printError("insert");
    glDebugMessageInsert(GL_DEBUG_SOURCE_THIRD_PARTY, GL_DEBUG_TYPE_MARKER, 5, GL_DEBUG_SEVERITY_NOTIFICATION,
        6, "marker and more");
    glDisable(GL_DEBUG_OUTPUT);
    insert(11);
    printState();
}

GLuint compile(GLenum type, const char* source)
{
    const GLuint shader = glCreateShader(type);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    return shader;
}

constexpr const char* vertexShader = "#version 320 es\nlayout(location = 0) in vec2 place;\n"
                                     "void main() { gl_Position = vec4(place, 0.0, 1.0); }\n";
constexpr const char* geometryShader =
    "#version 320 es\nlayout(triangles) in;\nlayout(triangle_strip, max_vertices = 3) out;\nvoid main() {\n"
    "for (int i = 0; i < 3; ++i) { gl_Position = gl_in[i].gl_Position; EmitVertex(); }\nEndPrimitive(); }\n";
constexpr const char* controlShader =
    "#version 320 es\nlayout(vertices = 4) out;\nvoid main() {\n"
    "gl_out[gl_InvocationID].gl_Position = gl_in[gl_InvocationID].gl_Position;\n"
    "for (int i = 0; i < 4; ++i) gl_TessLevelOuter[i] = 1.0;\n"
    "gl_TessLevelInner[0] = gl_TessLevelInner[1] = 1.0; }\n";
constexpr const char* evaluationShader =
    "#version 320 es\nlayout(quads) in;\nvoid main() { gl_Position = mix(\n"
    "mix(gl_in[0].gl_Position, gl_in[1].gl_Position, gl_TessCoord.x),\n"
    "mix(gl_in[2].gl_Position, gl_in[3].gl_Position, gl_TessCoord.x), gl_TessCoord.y); }\n";
constexpr const char* fragmentShader = "#version 320 es\nprecision mediump float;\nout vec4 color;\n"
                                       "void main() { color = vec4(1.0); }\n";

GLuint link(const std::map<GLenum, const char*>& shaders)
{
    const GLuint program = glCreateProgram();
    for (const auto& [type, source] : shaders)
        glAttachShader(program, compile(type, source));
    glLinkProgram(program);
    return program;
}

constexpr int side = 64;

void printPixels(const std::string& name)
{
    std::vector<unsigned char> pixels(side * side * 4);
    glReadPixels(0, 0, side, side, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    unsigned hash = 2166136261U;
    int lit = 0;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        hash = (hash ^ pixels[i]) * 16777619U;
        lit += i % 4 == 0 && pixels[i] != 0 ? 1 : 0;
    }
    std::printf("%s %d %u %#x\n", name.c_str(), lit, hash, glGetError());
    std::fflush(stdout);
}

using Draws = std::map<std::string, std::function<void()>>;

/// Each draws the same square, as two triangles or a strip of them, in its own way.
Draws draws()
{
    static const std::array<GLubyte, 6> square{0, 1, 2, 2, 1, 3};
    static const std::array<GLushort, 9> strips{0, 1, 2, 0xFFFF, 2, 1, 3, 0xFFFF, 0};
    static const std::array<GLuint, 4> arraysIndirect{4, 1, 0, 0};
    static const std::array<GLuint, 5> elementsIndirect{6, 1, 0, 0, 0};
    const auto bindSquare = [] {
        GLuint buffer = 0;
        glGenBuffers(1, &buffer);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffer);
        glBufferData(GL_ELEMENT_ARRAY_BUFFER, square.size(), square.data(), GL_STATIC_DRAW);
    };
    const auto bindIndirect = [](const GLuint* numbers, std::size_t count) {
        GLuint buffer = 0;
        glGenBuffers(1, &buffer);
        glBindBuffer(GL_DRAW_INDIRECT_BUFFER, buffer);
        glBufferData(GL_DRAW_INDIRECT_BUFFER, static_cast<GLsizeiptr>(count * sizeof *numbers), numbers,
            GL_STATIC_DRAW);
    };
    const auto startPatches = [] {
        glUseProgram(link({{GL_VERTEX_SHADER, vertexShader}, {GL_TESS_CONTROL_SHADER, controlShader},
            {GL_TESS_EVALUATION_SHADER, evaluationShader}, {GL_FRAGMENT_SHADER, fragmentShader}}));
        glPatchParameteri(GL_PATCH_VERTICES, 4);
    };
    return {
        {"arrays",
            [] {
                glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
            }},
        {"instanced",
            [] {
                glDrawArraysInstanced(GL_TRIANGLE_STRIP, 0, 4, 2);
            }},
        {"fan",
            [] {
                glDrawArrays(GL_TRIANGLE_FAN, 4, 4);
            }},
        {"memory",
            [] {
                glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_BYTE, square.data());
            }},
        {"buffer",
            [=] {
                bindSquare();
                GLint before = 0, after = 0;
                glGetIntegerv(GL_ELEMENT_ARRAY_BUFFER_BINDING, &before);
                glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_BYTE, nullptr);
                glGetIntegerv(GL_ELEMENT_ARRAY_BUFFER_BINDING, &after);
                std::printf(before == after ? "" : "another buffer is bound ");
            }},
        {"geometry",
            [] {
                glUseProgram(link({{GL_VERTEX_SHADER, vertexShader}, {GL_GEOMETRY_SHADER, geometryShader},
                    {GL_FRAGMENT_SHADER, fragmentShader}}));
                glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
            }},
        {"patches",
            [=] {
                startPatches();
                glDrawArrays(GL_PATCHES, 0, 4);
            }},
        {"indirect-patches",
            [=] {
                startPatches();
                bindIndirect(arraysIndirect.data(), 4);
                glDrawArraysIndirect(GL_PATCHES, nullptr);
            }},
        {"range",
            [=] {
                bindSquare();
                glDrawRangeElements(GL_TRIANGLES, 0, 3, 6, GL_UNSIGNED_BYTE, nullptr);
            }},
        {"base",
            [=] {
                bindSquare();
                glDrawElementsBaseVertex(GL_TRIANGLES, 6, GL_UNSIGNED_BYTE, nullptr, 8);
            }},
        {"restart",
            [] {
                glEnable(GL_PRIMITIVE_RESTART_FIXED_INDEX);
                glDrawElements(GL_TRIANGLE_STRIP, 8, GL_UNSIGNED_SHORT, strips.data());
            }},
        {"indirect",
            [=] {
                bindIndirect(arraysIndirect.data(), 4);
                glDrawArraysIndirect(GL_TRIANGLE_STRIP, nullptr);
            }},
        {"elements-indirect",
            [=] {
                bindSquare();
                bindIndirect(elementsIndirect.data(), 5);
                glDrawElementsIndirect(GL_TRIANGLES, GL_UNSIGNED_BYTE, nullptr);
            }},
        {"lines",
            [] {
                glDrawArrays(GL_LINES, 0, 2);
            }},
    };
}

/// Draws what each line of standard input asks for.
void drawOnDemand()
{
    startCurrent();
    GLuint texture = 0, frame = 0, array = 0, buffer = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexStorage2D(GL_TEXTURE_2D, 1, GL_RGBA8, side, side);
    glGenFramebuffers(1, &frame);
    glBindFramebuffer(GL_FRAMEBUFFER, frame);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    glViewport(0, 0, side, side);
    const GLuint program = link({{GL_VERTEX_SHADER, vertexShader}, {GL_FRAGMENT_SHADER, fragmentShader}});
    glUseProgram(program);
    // A strip, a fan, and the strip once more.
    const std::array<float, 24> places{-.9F, -.9F, .9F, -.9F, -.9F, .9F, .9F, .9F, -.9F, -.9F, .9F, -.9F, .9F,
        .9F, -.9F, .9F, -.9F, -.9F, .9F, -.9F, -.9F, .9F, .9F, .9F};
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glBufferData(GL_ARRAY_BUFFER, sizeof places, places.data(), GL_STATIC_DRAW);
    const Draws all = draws();
    for (std::string name; std::getline(std::cin, name);) {
        // Indices from memory need the default array, indirect ones another.
        if (name.find("indirect") != std::string::npos) {
            glGenVertexArrays(1, &array);
            glBindVertexArray(array);
        } else {
            glBindVertexArray(0);
            glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
        }
        glEnableVertexAttribArray(0);
        glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 0, nullptr);
        glDisable(GL_PRIMITIVE_RESTART_FIXED_INDEX);
        glUseProgram(program);
        glClear(GL_COLOR_BUFFER_BIT);
        all.at(name)();
        printPixels(name);
    }
}

void makeErrorsInThreads()
{
    start();
    const EGLContext shared = makeContext();
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([shared, number] {
            eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, makeContext(shared));
            int wrong = 0;
            for (int i = 0; i < 500; ++i) {
                glViewport(number, i, -1, 1);
                wrong += glGetError() != GL_INVALID_VALUE || glGetError() != GL_NO_ERROR ? 1 : 0;
            }
            std::printf("wrong: %d\n", wrong);
            eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

void EGLAPIENTRY onEglError(
    EGLenum error, const char* command, EGLint, EGLLabelKHR, EGLLabelKHR, const char* message)
{
    std::printf("%#x %s: %s\n", error, command, message ? message : "");
}

/// Contexts that end with their display, over and over, which is no error.
void terminateOften()
{
    start();
    const auto control =
        reinterpret_cast<PFNEGLDEBUGMESSAGECONTROLKHRPROC>(eglGetProcAddress("eglDebugMessageControlKHR"));
    control(&onEglError, nullptr);
    std::size_t before = 0;
    for (int round = 0; round < 30; ++round) {
        if (round == 10)
            before = mallinfo2().uordblks;
        for (int i = 0; i < 20; ++i)
            makeContext();
        eglTerminate(display);
        start();
    }
    constexpr std::size_t limit = 500'000; // bytes
    std::printf("grows: %d\n", mallinfo2().uordblks > before + limit);
}

/// Sixty contexts that one thread destroys while another begins to use them, and one that nobody uses.
void destroyWhileUsed()
{
    start();
    std::atomic<EGLContext> handed{EGL_NO_CONTEXT};
    std::atomic<bool> done{false};
    std::thread user([&] {
        while (!done) {
            const EGLContext context = handed.exchange(EGL_NO_CONTEXT);
            if (context == EGL_NO_CONTEXT
                || !eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context))
                continue;
            glEnable(0x1234);
            eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        }
    });
    for (int i = 0; i < 60; ++i) {
        const EGLContext context = makeContext();
        eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context);
        eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        handed = context;
        while (handed != EGL_NO_CONTEXT)
            continue;
        for (int pause = i % 30 * 4; pause > 0; --pause)
            done.load();
        eglDestroyContext(display, context);
    }
    done = true;
    user.join();
    eglDestroyContext(display, makeContext());
    std::puts("alive");
}

using Enable = void (*)(GLenum);
using Dlsym = void* (*)(void*, const char*);

#ifdef __SANITIZE_ADDRESS__
constexpr int deepBinding = 0; // Which the sanitizer refuses.
#else
constexpr int deepBinding = RTLD_DEEPBIND;
#endif

Enable enableOf(const char* library, int flags = RTLD_LAZY)
{
    void* handle = dlopen(library, flags);
    return handle ? reinterpret_cast<Enable>(dlsym(handle, "glEnable")) : nullptr;
}

/// Makes an error by each way to come by a function; its enumerant is the number of the way.
void callInAllWays()
{
    startCurrent();
    Dl_info info{};
    dladdr(reinterpret_cast<void*>(&glEnable), &info);
    void* library = dlopen("libGLESv2.so.2", RTLD_LAZY);
    Dlsym loader = nullptr;
    for (const char* version : {"GLIBC_2.34", "GLIBC_2.2.5", "GLIBC_2.17"}) {
        if (!loader)
            loader = reinterpret_cast<Dlsym>(dlvsym(RTLD_DEFAULT, "dlsym", version));
    }
    const std::vector<Enable> ways{&glEnable, enableOf("libGLESv2.so.2"), enableOf("libGLESv2.so"),
        enableOf(info.dli_fname), enableOf("libGLESv2.so.2", RTLD_LAZY | deepBinding),
        reinterpret_cast<Enable>(dlsym(RTLD_DEFAULT, "glEnable")),
        reinterpret_cast<Enable>(eglGetProcAddress("glEnable")), enableOf("libGL.so.1"),
        enableOf("libOpenGL.so.0"), reinterpret_cast<Enable>(loader ? loader(library, "glEnable") : nullptr)};
    for (std::size_t way = 0; way < ways.size(); ++way) {
        if (ways[way]) {
            ways[way](0x7000 + static_cast<GLenum>(way));
            std::printf("%zu ", way);
        }
    }
}

/// What comes behind the program in the loader's order, and not behind whoever stands between.
void callTheNext()
{
    startCurrent();
    reinterpret_cast<Enable>(dlsym(RTLD_NEXT, "glEnable"))(0x1234);
    glGetError();
}

void showFrames()
{
    start();
    const std::array<EGLint, 5> size{EGL_WIDTH, 8, EGL_HEIGHT, 8, EGL_NONE};
    const EGLSurface surface = eglCreatePbufferSurface(display, config, size.data());
    eglMakeCurrent(display, surface, surface, makeContext());
    for (int frame = 0; frame < 3; ++frame) {
        glEnable(0x1111);
        eglSwapBuffers(display, surface);
    }
}

void forkAndDraw()
{
    if (fork() == 0) {
        startCurrent();
        glEnable(0x1111);
        _exit(0);
    }
    startCurrent();
    glEnable(0x2222);
}

} // namespace

int main(int argumentCount, char* arguments[])
{
    const std::map<std::string, std::function<void()>> scripts{
        {"errors", &makeErrors},
        {"no-error", &breakPromise},
        {"debug",
            [] {
                useDebugOutput(false);
            }},
        {"debug-context",
            [] {
                useDebugOutput(true);
            }},
        {"draw", &drawOnDemand},
        {"device", &answerQuestions},
        {"threads", &makeErrorsInThreads},
        {"terminate", &terminateOften},
        {"destroy", &destroyWhileUsed},
        {"frames", &showFrames},
        {"fork", &forkAndDraw},
        {"ways", &callInAllWays},
        {"next", &callTheNext},
    };
    const auto found = scripts.find(argumentCount > 1 ? arguments[1] : "");
    if (found == scripts.end())
        return 2;
    found->second();
    return 0;
}
