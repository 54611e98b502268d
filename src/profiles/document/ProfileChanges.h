#pragma once

#include <cstddef>

class ProfileData;

/// How many changes make one profile of the other, as a user would count them: texts, values, and elements
/// that were added or taken out. A changed value counts as one.
std::size_t countChanges(const ProfileData& before, const ProfileData& after);
