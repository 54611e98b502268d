#pragma once

#include "ConsoleEntry.h"

#include <cstdint>
#include <set>
#include <string_view>

/// Which entries of a console are shown as a part of the one before them.
struct ConsoleFolding {
    bool repeats = false; ///< Equal entries that follow each other.
    bool groups = false; ///< What stands inside of the frames of identified messages.
    /// Groups that are shown otherwise, by the serial numbers of the messages that opened them.
    std::set<std::uint64_t> exceptions;

    bool isActive() const { return repeats || groups || !exceptions.empty(); }

    /// True for an entry in a place of its console that goes into the one before it.
    bool folds(std::string_view former, std::string_view entry, const GroupPlace& place) const
    {
        const bool isGroupFolded = groups != exceptions.contains(place.serial);
        return (isGroupFolded && console_entry::isInGroup(entry, place))
            || (repeats && console_entry::isRepeated(former, entry));
    }
};
