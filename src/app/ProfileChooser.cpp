#include "ProfileChooser.h"

#include "ProfileCatalogue.h"
#include "ProfileData.h"
#include "ProfileDataWrapper.h"
#include "ProfileMetaTypes.h"

#include <QComboBox>
#include <QSignalBlocker>

namespace {

/// What the list shows for a profile. Files can share a device's name, so theirs is added.
QString itemText(const ProfileDataWrapper& profile)
{
    constexpr qsizetype longestName = 120;
    QString name = QString::fromStdString(profile.data().displayName()).left(longestName);
    const QString file = QString::fromStdString(profile.data().fileName());
    if (!profile.isWritable() || file.isEmpty() || file == name)
        return name;
    return QStringLiteral("%1 (%2)").arg(name, file);
}

} // namespace

ProfileChooser::ProfileChooser(QComboBox* box)
    : QObject(box)
    , m_box(box)
{
    registerProfileMetaTypes();
    m_box->setToolTip(tr("The hardware that applications are to find; \"Host\" is this computer's own"));
    m_box->addItem(QStringLiteral("Host"));
}

void ProfileChooser::show(const ProfileCatalogue& catalogue)
{
    const QSignalBlocker blocker(m_box);
    m_box->clear();
    m_box->addItem(QStringLiteral("Host"));
    const std::shared_ptr<ProfileDataWrapper> current = catalogue.current();
    for (const auto* profiles : {&catalogue.builtinProfiles(), &catalogue.userProfiles()}) {
        for (const std::shared_ptr<ProfileDataWrapper>& profile : *profiles) {
            addProfile(profile);
            if (profile == current)
                m_box->setCurrentIndex(m_box->count() - 1);
        }
    }
}

void ProfileChooser::addProfile(const std::shared_ptr<ProfileDataWrapper>& profile)
{
    m_box->addItem(itemText(*profile), QVariant::fromValue(WeakProfile(profile)));
    m_box->setItemData(m_box->count() - 1,
        profile->isWritable() ? tr("A profile of yours") : tr("A built-in profile, which cannot be changed"),
        Qt::ToolTipRole);
}

std::string ProfileChooser::chosenKey() const
{
    const std::shared_ptr<const ProfileDataWrapper> profile =
        m_box->currentData().value<WeakProfile>().lock();
    return profile ? profile->key() : std::string();
}
