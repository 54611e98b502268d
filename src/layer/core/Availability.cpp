#include "Availability.h"

#include <algorithm>
#include <iterator>

namespace layer {

namespace {

struct EnumerantRow {
    GLenum value;
    std::uint32_t start;
    std::uint32_t count;
};

#include "LayerAvailability.inc"

/// Lower numbers are versions, major times ten plus minor.
constexpr unsigned firstExtension = 64;

unsigned numberOf(std::uint16_t source)
{
    return source / 4U;
}

std::string nameOf(std::uint16_t source)
{
    const unsigned number = numberOf(source);
    if (number >= firstExtension)
        return extensionNames[number - firstExtension];
    return "OpenGL ES " + std::to_string(number / 10) + '.' + std::to_string(number % 10);
}

} // namespace

Availability::Availability(int esVersion, const std::vector<std::string>& extensions)
    : m_version(esVersion < 20 ? 11 : esVersion)
    , m_family(esVersion < 20 ? 1 : 2)
{
    for (const char* const name : extensionNames)
        m_extensions.push_back(std::ranges::find(extensions, name) != extensions.end());
}

Availability::Sources Availability::sourcesOf(Fn function)
{
    const auto index = static_cast<std::size_t>(function);
    return Sources(allSources)
        .subspan(functionStarts[index], functionStarts[index + 1] - functionStarts[index]);
}

Availability::Sources Availability::sourcesOf(GLenum enumerant)
{
    const auto* row = std::ranges::lower_bound(enumerantRows, enumerant, {}, &EnumerantRow::value);
    if (row == std::end(enumerantRows) || row->value != enumerant)
        return {};
    return Sources(allSources).subspan(row->start, row->count);
}

bool Availability::hasAny(Sources sources) const
{
    return std::ranges::any_of(sources, [this](std::uint16_t source) {
        const unsigned number = numberOf(source);
        if ((source & m_family) == 0)
            return false;
        return number < firstExtension ? static_cast<int>(number) <= m_version
                                       : m_extensions[number - firstExtension];
    });
}

bool Availability::has(GLenum enumerant) const
{
    const Sources sources = sourcesOf(enumerant);
    return sources.empty() || hasAny(sources);
}

std::vector<GLenum> Availability::missingEnumerants() const
{
    std::vector<GLenum> missing;
    for (const EnumerantRow& row : enumerantRows) {
        if (!hasAny(Sources(allSources).subspan(row.start, row.count)))
            missing.push_back(row.value);
    }
    return missing;
}

std::string Availability::needText(Sources sources) const
{
    std::vector<std::string> names;
    for (const std::uint16_t source : sources) {
        if ((source & m_family) != 0)
            names.push_back(nameOf(source));
    }
    // What no extension brings to this version, another one may have.
    if (names.empty() && !sources.empty())
        names.push_back(nameOf(sources.front()));
    if (names.empty())
        return "needs OpenGL rather than OpenGL ES";
    constexpr std::size_t namesInText = 4;
    std::string text = "needs " + names.front();
    const std::size_t shown = std::min(names.size(), namesInText);
    for (std::size_t i = 1; i < shown; ++i)
        text += (i + 1 == names.size() ? " or " : ", ") + names[i];
    if (shown < names.size())
        text += " or one of " + std::to_string(names.size() - shown) + " more";
    return text;
}

} // namespace layer
