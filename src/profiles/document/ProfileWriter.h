#pragma once

#include <string>

class ProfileData;

/// Exactly what a save writes. What is larger than a file may be, and is never written, is cut off behind it.
std::string writeProfile(const ProfileData& profile);
