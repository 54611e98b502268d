#pragma once

#include <cstdint>

/// The OpenGL ES enumerants that the scenarios send.
namespace demo::gl {

inline constexpr std::uint32_t noError = 0;
inline constexpr std::uint32_t invalidEnum = 0x0500;
inline constexpr std::uint32_t invalidValue = 0x0501;
inline constexpr std::uint32_t invalidOperation = 0x0502;
inline constexpr std::uint32_t stackOverflow = 0x0503;
inline constexpr std::uint32_t stackUnderflow = 0x0504;
inline constexpr std::uint32_t outOfMemory = 0x0505;
inline constexpr std::uint32_t invalidFramebufferOperation = 0x0506;
inline constexpr std::uint32_t contextLost = 0x0507; ///< None of the codes that the window has a name for.

inline constexpr std::uint32_t sourceApi = 0x8246;
inline constexpr std::uint32_t sourceWindowSystem = 0x8247;
inline constexpr std::uint32_t sourceShaderCompiler = 0x8248;
inline constexpr std::uint32_t sourceThirdParty = 0x8249;
inline constexpr std::uint32_t sourceApplication = 0x824A;
inline constexpr std::uint32_t sourceOther = 0x824B;

inline constexpr std::uint32_t typeError = 0x824C;
inline constexpr std::uint32_t typeDeprecatedBehavior = 0x824D;
inline constexpr std::uint32_t typeUndefinedBehavior = 0x824E;
inline constexpr std::uint32_t typePortability = 0x824F;
inline constexpr std::uint32_t typePerformance = 0x8250;
inline constexpr std::uint32_t typeOther = 0x8251;
inline constexpr std::uint32_t typeMarker = 0x8268;
inline constexpr std::uint32_t typePushGroup = 0x8269;
inline constexpr std::uint32_t typePopGroup = 0x826A;

inline constexpr std::uint32_t severityNotification = 0x826B;
inline constexpr std::uint32_t severityHigh = 0x9146;
inline constexpr std::uint32_t severityMedium = 0x9147;
inline constexpr std::uint32_t severityLow = 0x9148;

} // namespace demo::gl
