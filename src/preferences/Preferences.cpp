#include "Preferences.h"

namespace {

/// How long another process may replace the file before a change counts as not saved.
constexpr std::chrono::seconds patience{5};

} // namespace

Preferences::Preferences(std::string storeName, std::unique_ptr<TSRPreferencesImpl> layer)
    : m_store(std::move(storeName), TSRPreferencesImpl::perUser, std::move(layer))
{
}

void Preferences::set(const std::vector<Change>& changes)
{
    bool refused = false;
    for (const Change& change : changes)
        refused |= m_store.set(change.keyPath, change.value) == ResultCode::WrongType;
    report(save(refused));
}

void Preferences::trySavingAgain()
{
    if (isWaiting())
        report(save(false));
}

void Preferences::finishSaving()
{
    if (!isWaiting())
        return;
    m_store.setWaits(true);
    m_store.save(true);
    m_giveUpTime.reset();
}

void Preferences::report(const SaveOutcome& outcome) const
{
    if (m_observer)
        m_observer(outcome);
}

SaveOutcome Preferences::save(bool refused)
{
    m_store.setWaits(!m_observer);
    // What waits does not count as a change any more, so it is forced.
    const bool saved = m_store.save(isWaiting());
    if (saved && !m_store.unwrittenReason().empty() && m_store.isTaken())
        return waitOrGiveUp();
    m_giveUpTime.reset();
    if (!saved)
        return save_outcome::NotSaved{m_store.saveError()};
    if (!m_store.unwrittenReason().empty())
        return save_outcome::NotSaved{m_store.unwrittenReason()};
    if (refused)
        return save_outcome::NotSaved{"The preferences file cannot hold this value."};
    if (m_store.corruptCopy() == m_reportedCopy)
        return save_outcome::Saved{};
    m_reportedCopy = m_store.corruptCopy();
    return save_outcome::UnreadableSetAside{m_reportedCopy};
}

SaveOutcome Preferences::waitOrGiveUp()
{
    const auto now = std::chrono::steady_clock::now();
    if (!m_giveUpTime)
        m_giveUpTime = now + patience;
    if (m_observer && now < *m_giveUpTime)
        return save_outcome::Waiting{};
    m_giveUpTime.reset();
    return save_outcome::NotSaved{m_store.unwrittenReason()};
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

void Preferences::read(const std::string& keyPath, property_list::Data& value) const
{
    m_store.getData(keyPath, &value, nullptr, false);
}
