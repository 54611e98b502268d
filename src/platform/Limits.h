#pragma once

#include <cstddef>

/// What files and documents may measure at most. What is beyond a limit is refused, never cut.
namespace platform::limits {

/// Bytes of a profile or of the preferences; larger files are neither read nor written.
inline constexpr std::size_t fileSize = std::size_t{8} * 1024 * 1024;

/// Attributes of one XML element: the parser compares each of them with all others.
inline constexpr int xmlAttributes = 256;

/// Declarations of one XML document.
inline constexpr int xmlDeclarations = 100;

/// Components of a key path into a property list; deeper documents could not be parsed again.
inline constexpr std::size_t keyPathComponents = 90;

} // namespace platform::limits
