#pragma once

#include <QString>

#include <vector>

class Preferences;

/// The filters of error lists that a user keeps with names, in the preferences. The one that was kept last
/// is the first.
class KeptFilters {
public:
    static constexpr std::size_t mostFilters = 50;

    struct Filter {
        QString name;
        QString text;
    };

    /// The store must live longer.
    explicit KeptFilters(Preferences& preferences)
        : m_preferences(preferences)
    {
    }

    std::vector<Filter> filters() const;
    /// Keeps a filter instead of one of its name. The last one of too many goes.
    void keep(const Filter& filter);
    void forget(const QString& name);

private:
    void store(const std::vector<Filter>& filters);

    Preferences& m_preferences;
};
