#pragma once

#include "PlistPreferences.h"
#include "Settings.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

/// What became of a save of the preferences.
namespace save_outcome {

struct Saved { };

/// Not saved yet, since another process is replacing the file. trySavingAgain() goes on.
struct Waiting { };

struct NotSaved {
    /// Readable text.
    std::string reason;
};

/// Saved, but the file that was replaced could not be read as preferences. It is kept as a copy.
struct UnreadableSetAside {
    std::filesystem::path copy;
};

} // namespace save_outcome

using SaveOutcome = std::variant<save_outcome::Saved, save_outcome::NotSaved,
    save_outcome::UnreadableSetAside, save_outcome::Waiting>;

/// The program's settings in their file. Whoever changes a setting does it here: the change is saved at once,
/// and one observer hears what became of that, whoever made the change.
class Preferences {
public:
    using SaveObserver = std::function<void(const SaveOutcome&)>;

    /// A new value for a setting, of whatever type.
    struct Change {
        template <typename T>
        Change(const Setting<T>& setting, std::type_identity_t<T> newValue)
            : keyPath(setting.keyPath)
            , value(std::move(newValue))
        {
        }

        std::string keyPath;
        property_list::Value value;
    };

    explicit Preferences(std::string storeName = settings::storeName,
        std::unique_ptr<TSRPreferencesImpl> layer = PlistPreferences::platformLayer());

    /// Reads the file, and watches it for changes by others from then on. False, with the reason in the error
    /// text, where that fails.
    bool load(std::string& error) { return m_store.load(error, true); }
    /// Why load() failed, as readable text that names the file.
    const std::string& loadProblem() const { return m_store.loadProblem(); }
    /// Whether the file holds something that is no property list, so that the defaults are in force. The next
    /// save puts it aside.
    bool isUnreadable() const { return m_store.isUnreadable(); }
    const std::filesystem::path& path() const { return m_store.path(); }

    /// The stored value, or the default where there is none of this type.
    template <typename T> T get(const Setting<T>& setting) const
    {
        T value = setting.defaultValue();
        read(setting.keyPath, value);
        return setting.isAbsentWhenEmpty && value == T() ? setting.defaultValue() : value;
    }

    /// Changes a setting and saves.
    template <typename T> void set(const Setting<T>& setting, std::type_identity_t<T> value)
    {
        set({Change(setting, std::move(value))});
    }
    /// Changes several settings and saves once.
    void set(const std::vector<Change>& changes);

    /// Changes a setting in memory alone. The next save takes it along; without one it is lost.
    template <typename T> void setUnsaved(const Setting<T>& setting, std::type_identity_t<T> value)
    {
        m_store.set(setting.keyPath, std::move(value));
    }

    /// Whether a change waits until another process has replaced the file. Whoever observes the saves calls
    /// trySavingAgain() after a short while then; without an observer, a save itself waits.
    bool isWaiting() const { return m_giveUpTime.has_value(); }
    /// Saves what waits, if there is something; after some seconds it is reported as not saved.
    void trySavingAgain();
    /// Saves what waits for the last time, and waits for the other process itself.
    void finishSaving();

    /// Sets the one who is called after each save; none for nobody.
    void setSaveObserver(SaveObserver observer) { m_observer = std::move(observer); }

private:
    void read(const std::string& keyPath, bool& value) const;
    void read(const std::string& keyPath, std::string& value) const;
    void read(const std::string& keyPath, property_list::List& value) const;
    void read(const std::string& keyPath, property_list::Data& value) const;
    /// Saves after changes of which one may have been refused, since a file cannot hold it.
    SaveOutcome save(bool refused);
    SaveOutcome waitOrGiveUp();
    void report(const SaveOutcome& outcome) const;

    PlistPreferences m_store;
    SaveObserver m_observer;
    /// Until when a change waits for another process; none while nothing waits.
    std::optional<std::chrono::steady_clock::time_point> m_giveUpTime;
    /// The last copy of an unreadable file that an outcome has named.
    std::filesystem::path m_reportedCopy;
};
