#include "Preferences.h"

Preferences::Preferences(std::string storeName, std::unique_ptr<TSRPreferencesImpl> layer)
    : m_store(std::move(storeName), TSRPreferencesImpl::perUser, std::move(layer))
{
}

void Preferences::set(std::initializer_list<Change> changes)
{
    bool refused = false;
    for (const Change& change : changes)
        refused |= m_store.set(change.keyPath, change.value) == ResultCode::WrongType;
    const SaveOutcome outcome = save(refused);
    if (m_observer)
        m_observer(outcome);
}

SaveOutcome Preferences::save(bool refused)
{
    if (!m_store.save(false))
        return save_outcome::NotSaved{m_store.saveError()};
    if (refused)
        return save_outcome::NotSaved{"The preferences file cannot hold this value."};
    if (m_store.corruptCopy() == m_reportedCopy)
        return save_outcome::Saved{};
    m_reportedCopy = m_store.corruptCopy();
    return save_outcome::UnreadableSetAside{m_reportedCopy};
}

void Preferences::read(const std::string& keyPath, bool& value) const
{
    m_store.getBoolean(keyPath, &value, nullptr, false);
}

void Preferences::read(const std::string& keyPath, std::string& value) const
{
    m_store.getString(keyPath, &value, nullptr, false);
}

void Preferences::read(const std::string& keyPath, property_list::List& value) const
{
    m_store.getList(keyPath, &value, nullptr, false);
}
