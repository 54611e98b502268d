#include "RecentProfilesMenu.h"

#include "CurrentProfile.h"
#include "PlainMessageBox.h"
#include "ProfileCatalogue.h"
#include "ProfileCopying.h"

#include <QFile>

RecentProfilesMenu::RecentProfilesMenu(
    Preferences& preferences, models::CurrentProfile& profile, QWidget* parent)
    : RecentFilesMenu(preferences, tr("&Recent Profiles"), parent)
    , m_profile(profile)
{
    setObjectName(QStringLiteral("menuRecentProfiles"));
    connect(this, &RecentFilesMenu::fileChosen, this, &RecentProfilesMenu::open);
    connect(this, &RecentFilesMenu::fileMissing, this, &RecentProfilesMenu::tellMissing);
}

void RecentProfilesMenu::open(const QString& path)
{
    const ProfileCatalogue* catalogue = m_profile.catalogue();
    if (!catalogue)
        return;
    const auto find = [this, catalogue](const QString& file) {
        m_profile.reload();
        return catalogue->findFile(QFile::encodeName(file).toStdString());
    };
    ProfileCatalogue::Pointer profile = find(path);
    QString found = path;
    if (!profile) {
        found = profile_copying::offerCopy(path, catalogue->profilesDirectory(), parentWidget());
        profile = found.isEmpty() ? nullptr : find(found);
    }
    if (!profile)
        return;
    m_profile.choose(profile);
    addFile(found);
    Q_EMIT profileChosen();
}

void RecentProfilesMenu::tellMissing(const QString& path)
{
    PlainMessageBox(QMessageBox::Warning, parentWidget()->windowTitle(),
        tr("The profile file is not there any more"),
        tr("\"%1\" was taken out of the list of recent profiles.").arg(path), parentWidget())
        .exec();
}
