#pragma once

#include <cstddef>
#include <cstdint>

#include <EGL/egl.h>
#include <EGL/eglext.h>

// The types that the registry of OpenGL speaks of, for all its versions at once; no header has those of
// OpenGL and OpenGL ES together.
using GLenum = std::uint32_t;
using GLbitfield = std::uint32_t;
using GLboolean = std::uint8_t;
using GLbyte = std::int8_t;
using GLubyte = std::uint8_t;
using GLshort = std::int16_t;
using GLushort = std::uint16_t;
using GLint = std::int32_t;
using GLuint = std::uint32_t;
using GLsizei = std::int32_t;
using GLfixed = std::int32_t;
using GLclampx = std::int32_t;
using GLint64 = std::int64_t;
using GLint64EXT = std::int64_t;
using GLuint64 = std::uint64_t;
using GLuint64EXT = std::uint64_t;
using GLfloat = float;
using GLclampf = float;
using GLdouble = double;
using GLclampd = double;
using GLchar = char;
using GLcharARB = char;
using GLintptr = std::intptr_t;
using GLintptrARB = std::intptr_t;
using GLsizeiptr = std::intptr_t;
using GLsizeiptrARB = std::intptr_t;
using GLhalfNV = std::uint16_t;
using GLhandleARB = std::uint32_t;
using GLvdpauSurfaceNV = std::intptr_t;
using GLsync = struct __GLsync*; // NOLINT(bugprone-reserved-identifier): the registry's name
using GLeglImageOES = void*;
using GLeglClientBufferEXT = void*;
using GLDEBUGPROC = void (*)(GLenum source, GLenum type, GLuint id, GLenum severity, GLsizei length,
    const GLchar* message, const void* userParam);
using GLDEBUGPROCARB = GLDEBUGPROC;
using GLDEBUGPROCKHR = GLDEBUGPROC;
using GLDEBUGPROCAMD = void (*)(
    GLuint id, GLenum category, GLenum severity, GLsizei length, const GLchar* message, void* userParam);
using GLVULKANPROCNV = void (*)();
// The registry's names. NOLINTBEGIN(bugprone-reserved-identifier)
struct _cl_context;
struct _cl_event;
// NOLINTEND(bugprone-reserved-identifier)

/// The enumerants that the layer itself uses.
namespace layer::gl {

inline constexpr GLenum none = 0;
inline constexpr GLenum invalidEnum = 0x0500;
inline constexpr GLenum invalidValue = 0x0501;
inline constexpr GLenum invalidOperation = 0x0502;
inline constexpr GLenum stackOverflow = 0x0503;

inline constexpr GLenum vendor = 0x1F00;
inline constexpr GLenum renderer = 0x1F01;
inline constexpr GLenum version = 0x1F02;
inline constexpr GLenum extensions = 0x1F03;
inline constexpr GLenum numExtensions = 0x821D;
inline constexpr GLenum shadingLanguageVersion = 0x8B8C;
inline constexpr GLenum majorVersion = 0x821B;
inline constexpr GLenum minorVersion = 0x821C;

inline constexpr GLenum maxTextureSize = 0x0D33;
inline constexpr GLenum maxViewportDims = 0x0D3A;
inline constexpr GLenum max3DTextureSize = 0x8073;
inline constexpr GLenum maxCubeMapTextureSize = 0x851C;
inline constexpr GLenum maxArrayTextureLayers = 0x88FF;
inline constexpr GLenum numCompressedTextureFormats = 0x86A2;
inline constexpr GLenum compressedTextureFormats = 0x86A3;
inline constexpr GLenum numProgramBinaryFormats = 0x87FE;
inline constexpr GLenum programBinaryFormats = 0x87FF;
inline constexpr GLenum shaderBinaryFormats = 0x8DF8;
inline constexpr GLenum numShaderBinaryFormats = 0x8DF9;
inline constexpr GLenum maxComputeWorkGroupCount = 0x91BE;
inline constexpr GLenum maxComputeWorkGroupSize = 0x91BF;
inline constexpr GLenum fragmentShader = 0x8B30;
inline constexpr GLenum vertexShader = 0x8B31;
inline constexpr GLenum computeShader = 0x91B9;
inline constexpr GLenum shaderType = 0x8B4F;
inline constexpr GLenum linkStatus = 0x8B82;
inline constexpr GLenum infoLogLength = 0x8B84;
inline constexpr GLenum shaderSourceLength = 0x8B88;
inline constexpr GLenum sampleBuffers = 0x80A8;
inline constexpr GLenum matrixMode = 0x0BA0;
inline constexpr GLenum samples = 0x80A9;
inline constexpr GLenum numSampleCounts = 0x9380;
inline constexpr GLenum implementationColorReadType = 0x8B9A;
inline constexpr GLenum implementationColorReadFormat = 0x8B9B;
inline constexpr GLenum framebufferBinding = 0x8CA6;
inline constexpr GLenum readFramebufferBinding = 0x8CAA;
inline constexpr GLenum renderbuffer = 0x8D41;
inline constexpr GLenum texture2DMultisample = 0x9100;
inline constexpr GLenum texture3D = 0x806F;
inline constexpr GLenum texture0 = 0x84C0;
inline constexpr GLenum textureCubeMap = 0x8513;
inline constexpr GLenum textureCubeMapPositiveX = 0x8515;
inline constexpr GLenum texture2DArray = 0x8C1A;
inline constexpr GLenum textureCubeMapArray = 0x9009;
inline constexpr GLenum texture2DMultisampleArray = 0x9102;

inline constexpr GLenum debugOutputSynchronous = 0x8242;
inline constexpr GLenum debugNextLoggedMessageLength = 0x8243;
inline constexpr GLenum debugCallbackFunction = 0x8244;
inline constexpr GLenum debugCallbackUserParam = 0x8245;
inline constexpr GLenum debugLoggedMessages = 0x9145;
inline constexpr GLenum debugOutput = 0x92E0;
inline constexpr GLenum dontCare = 0x1100;

inline constexpr GLenum debugSourceApi = 0x8246;
inline constexpr GLenum debugSourceShaderCompiler = 0x8248;
inline constexpr GLenum debugSourceThirdParty = 0x8249;
inline constexpr GLenum debugSourceApplication = 0x824A;
inline constexpr GLenum debugTypeError = 0x824C;
inline constexpr GLenum debugTypeMarker = 0x8268;
inline constexpr GLenum debugSeverityNotification = 0x826B;
inline constexpr GLenum debugSeverityHigh = 0x9146;
inline constexpr GLenum debugSeverityLow = 0x9148;

inline constexpr GLenum lines = 1;
inline constexpr GLenum triangles = 4;
inline constexpr GLenum triangleStrip = 5;
inline constexpr GLenum triangleFan = 6;
inline constexpr GLenum unsignedByte = 0x1401;
inline constexpr GLenum unsignedShort = 0x1403;
inline constexpr GLenum unsignedInt = 0x1405;
inline constexpr GLenum elementArrayBuffer = 0x8893;
inline constexpr GLenum elementArrayBufferBinding = 0x8895;
inline constexpr GLenum drawIndirectBuffer = 0x8F3F;
inline constexpr GLenum drawIndirectBufferBinding = 0x8F43;
inline constexpr GLenum bufferSize = 0x8764;
inline constexpr GLenum bufferMapped = 0x88BC;
inline constexpr GLenum streamDraw = 0x88E0;
inline constexpr GLbitfield mapReadBit = 1;
inline constexpr GLenum primitiveRestartFixedIndex = 0x8D69;
inline constexpr GLenum transformFeedbackActive = 0x8E24;
inline constexpr GLenum transformFeedbackPaused = 0x8E23;

} // namespace layer::gl
