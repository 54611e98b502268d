#include "KeptFilters.h"

#include "Preferences.h"

#include <algorithm>

namespace {

/// Between name and text: it stands in neither, since each was written in one line.
constexpr QChar separator = QLatin1Char('\t');

} // namespace

std::vector<KeptFilters::Filter> KeptFilters::filters() const
{
    std::vector<Filter> filters;
    for (const std::string& entry : m_preferences.get(settings::errorFilters)) {
        // The file may have been written by hand.
        const QString text = QString::fromStdString(entry);
        const qsizetype end = text.indexOf(separator);
        if (end > 0 && filters.size() < mostFilters)
            filters.push_back({text.left(end), text.mid(end + 1)});
    }
    return filters;
}

void KeptFilters::keep(const Filter& filter)
{
    Filter entry = filter;
    for (QString* text : {&entry.name, &entry.text})
        text->replace(separator, QLatin1Char(' '));
    std::vector<Filter> all = filters();
    std::erase_if(all, [&entry](const Filter& other) { return other.name == entry.name; });
    all.insert(all.begin(), entry);
    all.resize(std::min(all.size(), mostFilters));
    store(all);
}

void KeptFilters::forget(const QString& name)
{
    std::vector<Filter> all = filters();
    std::erase_if(all, [&name](const Filter& filter) { return filter.name == name; });
    store(all);
}

void KeptFilters::store(const std::vector<Filter>& filters)
{
    property_list::List entries;
    for (const Filter& filter : filters)
        entries.push_back((filter.name + separator + filter.text).toStdString());
    m_preferences.set(settings::errorFilters, entries);
}
