#pragma once

#include <string_view>

/// Orders names as people do: runs of digits by their value ("BW9" before "BW10"), ASCII letters without
/// regard to case, everything else by its bytes. Names that are equal by that are ordered by their bytes. The
/// user's locale has no say.
bool naturalLess(std::string_view left, std::string_view right);
