#include "GlValues.h"
#include "Scenarios.h"

#include <array>
#include <string>

namespace demo {

namespace {

void startUp(Session& session)
{
    session.information("Brass Heron 1.4.2 (build 2217)");
    session.information("Data folder: ./data, 214 files in 3 archives");
    session.information("Audio: stereo, 48000 Hz, 256 voices");
    session.lineBreak();
    reportSystem(session);
    session.information("Creating the window, 1280 x 720");
    createFirstContext(session);
    session.identified(1001, "Context 1 is current on the render thread");
    session.information("Vertical sync on, 4 samples per pixel");
    session.lineBreak();
    session.information("Creating a shared context for texture uploads");
    createSecondContext(session);
    session.warning("Context 2 runs in loose mode: calls that OpenGL ES 2.0 does not have are let through.");
}

void compileShaders(Session& session)
{
    session.information("Compiling 38 shaders ...");
    session.debug(gl::sourceShaderCompiler, gl::typeOther, 300, gl::severityNotification,
        "Program 4 \"sky\" linked: 11 uniforms, 2 attributes.");
    session.debug(gl::sourceShaderCompiler, gl::typePortability, 301, gl::severityMedium,
        "Program 9 \"water\": highp in the fragment shader is optional on OpenGL ES 2.0 devices.");
    session.debug(gl::sourceShaderCompiler, gl::typeDeprecatedBehavior, 302, gl::severityLow,
        "Program 12 \"hud\": gl_FragColor is deprecated since version 300 es.\n"
        "hud.frag:14: gl_FragColor = tint * texture(atlas, uv);");
    session.error("Shader \"fog.frag\" does not compile, the fog of level 3 will be missing.\n"
                  "fog.frag:27: undeclared identifier 'fogDensitiy'");
    session.information("37 of 38 shaders compiled in 412 ms");
}

void loadLevel(Session& session)
{
    session.lineBreak();
    session.information("Loading level 3 \"The Old Lighthouse\" ...");
    constexpr std::array<const char*, 5> steps{
        "  terrain      1.2 million triangles",
        "  textures     186 (412 MiB)",
        "  models       94",
        "  lights       31, of these 6 with shadows",
        "  characters   12",
    };
    for (const char* step : steps) {
        session.information(step);
        session.advance(7); // The loading picture is drawn meanwhile.
    }
    session.glError(gl::invalidEnum, "glCompressedTexImage2D",
        "internalformat 0x93B0 (ASTC 4x4) is not supported by the host. The texture \"gulls\" stays white.");
    session.glError(gl::invalidValue, "glTexParameteri",
        "GL_TEXTURE_MAX_LEVEL must not be negative: -1 was given for the texture \"rope\".");
    session.advance(3);
    session.information("Level loaded in 2.8 s");
    session.lineBreak();
}

/// What goes wrong in many frames, and a line that comes again and again.
void walkThroughCave(Session& session)
{
    constexpr std::array<std::uint32_t, 4> torches{14, 15, 22, 30};
    session.advance(2);
    for (std::uint32_t round = 0; round < 7; ++round) {
        for (const std::uint32_t torch : torches) {
            session.glError(gl::invalidOperation, "glUniform1f",
                "Location " + std::to_string(torch)
                    + " belongs to program 9, but program 12 is in use. Torch " + std::to_string(torch)
                    + " does not flicker.");
            session.advance(2);
        }
        if (round % 2 == 0)
            session.warning(
                "Texture " + std::to_string(60 + round) + " is not complete: its levels end at 256 x 256.");
    }
    for (int drop = 0; drop < 12; ++drop)
        session.information("Audio: no voice is free for \"drip\"");
}

void drawFrames(Session& session)
{
    session.debug(gl::sourceApplication, gl::typePushGroup, 1, gl::severityNotification, "Shadow pass");
    session.debug(gl::sourceApi, gl::typePerformance, 131, gl::severityMedium,
        "Vertex buffer 57 is written while the GPU reads it; the driver waits for 3.1 ms.");
    session.debug(gl::sourceApplication, gl::typePopGroup, 1, gl::severityNotification, "Shadow pass");
    session.advance(1);
    session.debug(
        gl::sourceApplication, gl::typeMarker, 2, gl::severityNotification, "Camera enters the cave");
    walkThroughCave(session);
    session.information("60 frames in 1004 ms (59.8 per second)");
    session.glError(gl::invalidFramebufferOperation, "glDrawElements",
        "Framebuffer 6 \"reflection\" is incomplete: its attachments have 0 and 4 samples.");
    session.debug(gl::sourceApi, gl::typeError, 1286, gl::severityHigh,
        "GL_INVALID_FRAMEBUFFER_OPERATION in glDrawElements: the reflection is not drawn.");
    session.advance(60);
    session.information("60 frames in 1019 ms (58.9 per second)");
    session.debug(gl::sourceApi, gl::typeUndefinedBehavior, 207, gl::severityHigh,
        "The draw call reads the texture that it renders to (texture 88, level 0).");
    session.debug(gl::sourceWindowSystem, gl::typeOther, 410, gl::severityLow,
        "The window was resized to 1600 x 900; the default framebuffer is new.");
    session.debug(gl::sourceThirdParty, gl::typePerformance, 12, gl::severityNotification,
        "Capture is on; each frame takes about 2 ms longer.");
    session.warning("Texture \"lamp_glow\" has 768 x 768 pixels; mipmaps of it are resampled at run time.");
}

void runIntoErrors(Session& session)
{
    session.advance(24);
    session.information("Saving the game in slot 2 ...");
    session.glError(gl::invalidOperation, "glReadPixels",
        "The pixel pack buffer 31 is mapped. The picture of the saved game stays black.");
    session.advance(1);
    session.error("The saved game has no picture.");
    session.glError(gl::stackUnderflow, "glPopDebugGroup", "There is no debug group to pop.");
    session.glError(gl::stackOverflow, "glPushDebugGroup",
        "64 groups are open, which is GL_MAX_DEBUG_GROUP_STACK_DEPTH. Group \"particles\" is dropped.");
    session.advance(35);
    session.glError(gl::outOfMemory, "glBufferStorage",
        "512 MiB for the particle buffer were refused by the host. Particles are off.");
    session.glError(gl::noError, "glGetError",
        "A call failed, but the host's driver says that there is no error. Its flag was read elsewhere.");
    session.glError(
        gl::contextLost, "glClientWaitSync", "The host's driver was reset and has no fence 7 any more.");
    session.warning("Particles are off: not enough graphics memory.");
    session.advance(25);
    session.information("60 frames in 1311 ms (45.8 per second)");
}

void shutDown(Session& session)
{
    session.lineBreak();
    session.information("The player quits.");
    session.debug(gl::sourceOther, gl::typeOther, 900, gl::severityLow,
        "Context 2 is destroyed with 3 textures that were not deleted.");
    session.information("Played 00:03:12, 1 level, 1 saved game. Good-bye.");
}

} // namespace

void playTour(Session& session)
{
    startUp(session);
    compileShaders(session);
    loadLevel(session);
    drawFrames(session);
    runIntoErrors(session);
    shutDown(session);
}

} // namespace demo
