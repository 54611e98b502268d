#include "Minima.h"

#include <algorithm>
#include <array>

namespace gl {

namespace {

struct MinimumEntry {
    std::string_view enumerant;
    EsVersion since;
    Minimum::Rule rule;
    std::size_t count;
    std::array<double, 2> values;
    std::string_view source;
};

/// The table is sorted by enumerant and then by version.
struct EnumerantOrder {
    bool operator()(const MinimumEntry& entry, std::string_view sought) const
    {
        return entry.enumerant < sought;
    }
    bool operator()(std::string_view sought, const MinimumEntry& entry) const
    {
        return sought < entry.enumerant;
    }
};

#include "MinimumTable.inc"

} // namespace

std::optional<Minimum> minimum(std::string_view enumerant, EsVersion version)
{
    const auto [first, last] = std::equal_range(minima.begin(), minima.end(), enumerant, EnumerantOrder());
    const MinimumEntry* newest = nullptr;
    for (auto entry = first; entry != last; ++entry) {
        const bool sameFamily = (entry->since == EsVersion::Es11) == (version == EsVersion::Es11);
        if (sameFamily && entry->since <= version)
            newest = &*entry;
    }
    if (!newest)
        return std::nullopt;
    return Minimum{newest->rule, std::span(newest->values).first(newest->count), newest->source};
}

bool isMet(const Minimum& minimum, std::span<const double> values)
{
    const std::span<const double> asked = minimum.values;
    switch (minimum.rule) {
    case Minimum::Rule::AtLeast:
        return std::all_of(values.begin(), values.end(), [&](double value) { return value >= asked[0]; });
    case Minimum::Rule::AtMost:
        return std::all_of(values.begin(), values.end(), [&](double value) { return value <= asked[0]; });
    case Minimum::Rule::Equals:
        return std::all_of(values.begin(), values.end(), [&](double value) { return value == asked[0]; });
    case Minimum::Rule::Contains:
        return values.size() == 2 && values[0] <= asked[0] && values[1] >= asked[1];
    }
    return false;
}

} // namespace gl
