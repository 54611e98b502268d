#include "CurrentProfile.h"

#include "ProfileCatalogue.h"
#include "ProfileController.h"
#include "ProfileDataWrapper.h"
#include "ProfileEditor.h"
#include "ProfileFile.h"
#include "ProfileReader.h"

#include <QFile>

#include <filesystem>
#include <utility>

namespace models {

namespace {

/// Gives a document the content of another one, but not its file name.
void setContent(ProfileData& document, const ProfileData& content)
{
    const std::string fileName = document.fileName();
    document = content;
    document.setFileName(fileName);
}

} // namespace

CurrentProfile::CurrentProfile(ProfileController* controller, QObject* parent)
    : QObject(parent)
    , m_controller(controller)
{
    registerProfileMetaTypes();
}

void CurrentProfile::setCatalogue(ProfileCatalogue& catalogue)
{
    m_catalogue = &catalogue;
    announceList(chosenOrRemembered());
}

void CurrentProfile::reload()
{
    if (!m_catalogue)
        return;
    const Pointer held = chosen();
    m_catalogue->reload();
    announceList(chosenOrRemembered());
}

CurrentProfile::Pointer CurrentProfile::chosenOrRemembered() const
{
    const Pointer profile = chosen();
    return profile && m_catalogue->contains(*profile) ? profile : m_catalogue->current();
}

/// What a changed list means for the choice and for what is shown. Edits are never dropped here, since it is
/// not the user who has changed the choice.
void CurrentProfile::announceList(const Pointer& chosen)
{
    const bool isOther = setChosen(chosen);
    Q_EMIT listChanged();
    if (isOther)
        Q_EMIT chosenChanged(m_chosen);
    const bool isUnlisted = m_state == State::Lost || m_state == State::UnsavedNew;
    if (showsChosen() || (isUnlisted && !isOther))
        return;
    if (!m_editor || !m_editor->hasUnsavedEdits()) {
        show(chosen);
    } else if (!isUnlisted) {
        m_state = State::Lost;
        Q_EMIT shownLost();
    }
}

/// True when it is another profile than before. Owners are compared, which tells one that has gone from one
/// that has come in its place.
bool CurrentProfile::setChosen(const Pointer& profile)
{
    const bool isOther = m_chosen.owner_before(profile) || profile.owner_before(m_chosen);
    m_chosen = profile;
    return isOther;
}

bool CurrentProfile::choose(const Pointer& wanted)
{
    const auto isListed = [&] {
        return !wanted || m_catalogue->contains(*wanted);
    };
    if (!m_catalogue || !isListed())
        return false;
    if (wanted != chosen()) {
        // Saving reads the list again.
        if ((m_editor && !m_editor->mayLeave()) || !isListed())
            return false;
        if (setChosen(wanted))
            Q_EMIT chosenChanged(m_chosen);
        if (!showsChosen())
            show(wanted);
    }
    remember();
    return true;
}

void CurrentProfile::remember()
{
    const Pointer profile = chosen();
    m_catalogue->rememberCurrent(profile ? profile->key() : std::string());
}

bool CurrentProfile::showsChosen() const
{
    return m_state == State::None ? !chosen() : shownFromList() && shownFromList() == chosen();
}

/// The profile that is shown; none where it is not one of the list.
CurrentProfile::Pointer CurrentProfile::shownFromList() const
{
    return m_state == State::Listed ? m_lastListed.lock() : nullptr;
}

void CurrentProfile::show(const Pointer& profile)
{
    takeBackFailedSave();
    m_state = profile ? State::Listed : State::None;
    m_stored.reset();
    if (profile) {
        m_lastListed = profile;
        m_stored = profile->data();
    }
    Q_EMIT shownChanged(profile);
}

void CurrentProfile::newProfile()
{
    if (!m_controller || !m_catalogue)
        return;
    const WritablePointer added = m_catalogue->newProfile();
    takeBackFailedSave();
    m_state = State::UnsavedNew;
    m_stored = added->data();
    Q_EMIT shownChanged(added);
    saveCopy(added, added->data());
}

void CurrentProfile::showNew(const ProfileData& content)
{
    if (!m_controller || !m_catalogue)
        return;
    const WritablePointer added = m_catalogue->newProfile();
    setContent(*added->edit(), content);
    takeBackFailedSave();
    m_state = State::UnsavedNew;
    m_stored = added->data();
    m_stored->extensions().clear();
    m_stored->capabilities().clear();
    m_stored->configs().clear();
    Q_EMIT shownChanged(added);
    m_catalogue->forget(*added);
}

bool CurrentProfile::canSave() const
{
    return m_controller && m_catalogue && m_stored;
}

bool CurrentProfile::save(const ProfileData& edited)
{
    if (!canSave())
        return false;
    const Pointer listed = shownFromList();
    if (!listed)
        return saveCopy(copyOfStored(), edited);
    if (listed->isWritable())
        return saveInPlace(listed, edited);
    return m_controller->askForCopy() && saveCopy(m_catalogue->copyProfile(*listed), edited);
}

bool CurrentProfile::saveAs(const ProfileData& edited)
{
    if (!canSave())
        return false;
    const Pointer listed = shownFromList();
    return saveCopy(listed ? m_catalogue->copyProfile(*listed) : copyOfStored(), edited);
}

/// Adds a profile for what is in no list, with the file name that it had there.
CurrentProfile::WritablePointer CurrentProfile::copyOfStored()
{
    WritablePointer copy = m_catalogue->newProfile();
    copy->edit()->setFileName(m_stored->fileName());
    return copy;
}

bool CurrentProfile::saveCopy(const WritablePointer& copy, const ProfileData& edited)
{
    const std::shared_ptr<ProfileData> document = copy->edit();
    setContent(*document, edited);
    const std::string directory = m_controller->directoryForSaving();
    if (directory.empty() || !m_controller->saveAs(*document, directory)) {
        m_catalogue->forget(*copy);
        return false;
    }
    takeBackFailedSave();
    finishSave(copy, directory);
    return true;
}

/// Whether the file has these edits already: it is the one that was read, and nothing was changed.
bool CurrentProfile::isStoredInFile(
    const Pointer& profile, const ProfileData& edited, const std::string& directory) const
{
    const std::filesystem::path path = profile_file::pathFor(directory, profile->data().fileName());
    std::error_code error;
    return edited == *m_stored && std::filesystem::exists(path, error)
        && m_catalogue->mayOverwrite(*profile, path.string());
}

bool CurrentProfile::saveInPlace(const Pointer& profile, const ProfileData& edited)
{
    const std::string directory = m_controller->directoryForSaving();
    if (directory.empty())
        return false;
    const std::string& name = profile->data().fileName();
    if (isStoredInFile(profile, edited, directory)) {
        takeBackFailedSave();
        return true;
    }
    if (!name.empty() && !m_catalogue->mayOverwrite(*profile, profile_file::pathFor(directory, name).string())
        && !m_controller->mayReplace(name))
        return false;
    const std::shared_ptr<ProfileData> document = profile->edit();
    setContent(*document, edited);
    if (!m_controller->save(*document, directory))
        return false;
    finishSave(profile, directory);
    return true;
}

/// Reads the list after a save and announces it once, together with the choice of what was saved.
void CurrentProfile::finishSave(const Pointer& saved, const std::string& directory)
{
    m_state = State::Listed;
    m_lastListed = saved;
    // From now on the profile goes by the file that was written, with its lines.
    *saved->edit() = readWritten(saved->data());
    m_stored = saved->data();
    const std::string path = profile_file::pathFor(directory, saved->data().fileName()).string();
    const Pointer before = chosen();
    m_catalogue->reload();
    Pointer found = m_catalogue->findFile(path);
    if (!found && m_catalogue->contains(*saved))
        found = saved;
    announceList(found ? found : chosenOrRemembered());
    if (found && found != before)
        remember();
    Q_EMIT fileSaved(QFile::decodeName(QByteArray::fromStdString(path)));
}

/// Makes the document of the list what is in its file: a save in place that failed has left edits in it.
void CurrentProfile::takeBackFailedSave()
{
    const Pointer listed = shownFromList();
    if (listed && listed->isWritable() && m_stored && !(listed->data() == *m_stored))
        *listed->edit() = *m_stored;
}

std::optional<CurrentProfile::Unlisted> CurrentProfile::discard()
{
    if (shownFromList()) {
        takeBackFailedSave();
        Q_EMIT editsDiscarded();
        return std::nullopt;
    }
    Unlisted discarded{m_state, m_stored.value_or(ProfileData())};
    show(chosen());
    return discarded;
}

void CurrentProfile::setEdited(bool edited)
{
    if (std::exchange(m_edited, edited) != edited)
        Q_EMIT editedChanged(edited);
}

void CurrentProfile::takeBackDiscard(const Unlisted& discarded)
{
    takeBackFailedSave();
    m_state = discarded.state;
    m_stored = discarded.stored;
    Q_EMIT discardTakenBack();
}

} // namespace models
