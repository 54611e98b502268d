#pragma once

#include "KeyTables.h"

#include <functional>
#include <optional>
#include <string_view>

// Capabilities beyond the key table: what OpenGL ES 2.0 to 3.2 and the extensions of all versions add. Their
// elements are called like their enumerants: "max_uniform_block_size" for GL_MAX_UNIFORM_BLOCK_SIZE, without
// the letters of an extension.

/// Calls the function for every limit in the order of the table. None of them is in the key table.
void visitLimitKeys(const std::function<void(const ESCapabilityKey&)>& visit);

/// A capability of the key table or a limit, not a part of one.
std::optional<ESCapabilityKey> findCapability(const ESCapabilityKey::XMLName& name);
std::optional<ESCapabilityKey> findCapability(const ESCapabilityKey::DisplayName& name);

/// The enumerant by which applications query what an element says: that of its key, else the one that is
/// called like the element, with the letters of an extension where there is none without.
std::optional<std::uint32_t> capabilityEnumerant(std::string_view element);
