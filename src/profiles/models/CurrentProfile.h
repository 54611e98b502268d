#pragma once

#include "ProfileData.h"
#include "ProfileMetaTypes.h"

#include <QObject>
#include <QString>

#include <memory>
#include <optional>
#include <string>

class ProfileCatalogue;
class ProfileController;
class ProfileEditor;

namespace models {

/// Which profile is chosen and what the editor shows, and all that changes either: the user's choice, a list
/// that was read again, saving and discarding. Whoever shows a part of it follows the signals.
class CurrentProfile : public QObject {
    Q_OBJECT

public:
    using Pointer = std::shared_ptr<const ProfileDataWrapper>;

    /// What the editor shows.
    enum class State {
        /// Nothing: "Host" is chosen.
        None,
        /// The chosen profile.
        Listed,
        /// Unsaved edits of a profile that the list does not have any more; another one is chosen.
        Lost,
        /// A new profile, which is in no file and not in the list; another one is chosen.
        UnsavedNew
    };

    /// A profile that is shown and in no list.
    struct Unlisted {
        State state;
        ProfileData stored;
    };

    /// The controller must live longer; without one nothing can be saved.
    explicit CurrentProfile(ProfileController* controller, QObject* parent = nullptr);

    /// The catalogue must live as long as this is used. Giving it again announces what was added to it.
    void setCatalogue(ProfileCatalogue& catalogue);
    /// The editor must live as long as this is used; without one there are no edits.
    void setEditor(ProfileEditor* editor) { m_editor = editor; }

    const ProfileCatalogue* catalogue() const { return m_catalogue; }
    /// The chosen profile, none for "Host".
    Pointer chosen() const { return m_chosen.lock(); }
    State state() const { return m_state; }
    /// The profile of the list that was shown last: the one before, while it is a new one or none.
    const WeakProfile& lastListed() const { return m_lastListed; }
    /// What is in the file, as far as is known, and thus what edits are compared with; null when nothing is
    /// shown.
    const ProfileData* stored() const { return m_stored ? &*m_stored : nullptr; }

    /// Reads the profiles again. The chosen one stays chosen as long as the list has it; else it is the
    /// remembered one, and "Host" if that is not there either. The user is not asked: edits to a profile that
    /// has left the list stay, and a profile that has left it lives until that has been announced.
    void reload();

    /// Chooses a profile for the user and remembers it; none is "Host". False when the choice stays as it
    /// was: the user does not want to leave unsaved edits, or the list does not have the profile.
    bool choose(const Pointer& wanted);

    /// Shows a new profile and saves it under a name that the user gives; it stays shown when they give none.
    void newProfile();
    /// Shows a new profile with that content, all of which counts as edits that are in no file.
    void showNew(const ProfileData& content);

    /// Save what the editor holds: in place where that is possible, or as a copy in any case. What was saved
    /// becomes the chosen profile. A file that holds the edits already is not written again. False when
    /// nothing was saved.
    bool save(const ProfileData& edited);
    bool saveAs(const ProfileData& edited);

    /// Drops unsaved edits. A profile that is in no list goes as a whole, for the chosen one, and is
    /// returned.
    std::optional<Unlisted> discard();
    /// Makes what discard() returned the profile that is shown: what is stored is again what the edits were
    /// made on. The edits themselves are the editor's.
    void takeBackDiscard(const Unlisted& discarded);

    /// Whether the editor holds edits that are in no file, as it said last.
    bool isEdited() const { return m_edited; }
    void setEdited(bool edited);

Q_SIGNALS:
    /// The catalogue has another list, in which the chosen profile is looked up again.
    void listChanged();
    /// Another profile than before is chosen, by whatever means; never for one that stays chosen while the
    /// list changes.
    void chosenChanged(const WeakProfile& profile);
    /// Another profile is to be shown; an expired one for none.
    void shownChanged(const WeakProfile& profile);
    /// The profile that is shown has left the list, with edits.
    void shownLost();
    /// The profile that is shown is to be shown without the edits.
    void editsDiscarded();
    /// The editor shows again what it discarded, a profile that is in no list.
    void discardTakenBack();
    /// There are edits that are in no file, or there are none any more.
    void editedChanged(bool edited);
    /// A profile was saved to the file.
    void fileSaved(const QString& path);

private:
    using WritablePointer = std::shared_ptr<ProfileDataWrapper>;

    Pointer chosenOrRemembered() const;
    void announceList(const Pointer& chosen);
    bool setChosen(const Pointer& profile);
    void remember();
    bool showsChosen() const;
    void show(const Pointer& profile);
    Pointer shownFromList() const;

    bool isStoredInFile(
        const Pointer& profile, const ProfileData& edited, const std::string& directory) const;
    bool canSave() const;
    WritablePointer copyOfStored();
    bool saveInPlace(const Pointer& profile, const ProfileData& edited);
    bool saveCopy(const WritablePointer& copy, const ProfileData& edited);
    void finishSave(const Pointer& saved, const std::string& directory);
    void takeBackFailedSave();

    ProfileController* m_controller;
    ProfileCatalogue* m_catalogue = nullptr;
    ProfileEditor* m_editor = nullptr;
    State m_state = State::None;
    bool m_edited = false;
    WeakProfile m_chosen;
    WeakProfile m_lastListed;
    std::optional<ProfileData> m_stored;
};

} // namespace models
