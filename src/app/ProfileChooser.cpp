#include "ProfileChooser.h"

#include "ProfileCatalogue.h"
#include "ProfileData.h"
#include "ProfileDataWrapper.h"
#include "ProfileMetaTypes.h"

#include <QComboBox>
#include <QSignalBlocker>

#include <algorithm>
#include <stdexcept>

namespace {

/// A profile that is being made may have no name yet.
QString nameOf(const ProfileData& profile)
{
    try {
        return QString::fromStdString(profile.displayName());
    } catch (const std::runtime_error&) {
        return ProfileChooser::tr("Profile without a name");
    }
}

/// What the list shows for a profile. Files can share a device's name, so theirs is added.
QString itemText(const ProfileDataWrapper& profile)
{
    constexpr qsizetype longestName = 120;
    QString name = nameOf(profile.data()).left(longestName);
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
    connect(m_box, &QComboBox::currentIndexChanged, this, &ProfileChooser::announce);
}

void ProfileChooser::show(const ProfileCatalogue& catalogue)
{
    const std::shared_ptr<const ProfileDataWrapper> before = chosen();
    {
        const QSignalBlocker blocker(m_box);
        m_box->clear();
        m_box->addItem(QStringLiteral("Host"));
        for (const auto* profiles : {&catalogue.builtinProfiles(), &catalogue.userProfiles()}) {
            for (const std::shared_ptr<ProfileDataWrapper>& profile : *profiles)
                addProfile(profile);
        }
        const int same = before ? indexOf(before.get()) : -1;
        m_box->setCurrentIndex(std::max(same >= 0 ? same : indexOf(catalogue.current().get()), 0));
    }
    announce();
}

bool ProfileChooser::has(const std::shared_ptr<const ProfileDataWrapper>& profile) const
{
    return profile && indexOf(profile.get()) >= 0;
}

void ProfileChooser::choose(const std::shared_ptr<const ProfileDataWrapper>& profile)
{
    const int index = indexOf(profile.get());
    if (index >= 0)
        m_box->setCurrentIndex(index);
}

/// -1 when it is not in the list; that of "Host" for none.
int ProfileChooser::indexOf(const ProfileDataWrapper* profile) const
{
    for (int i = 0; i < m_box->count(); ++i) {
        if (m_box->itemData(i).value<WeakProfile>().lock().get() == profile)
            return i;
    }
    return -1;
}

void ProfileChooser::announce()
{
    const WeakProfile profile = chosen();
    // Owners are compared, so that the end of one profile is told from another that has its place.
    if (!profile.owner_before(m_announced) && !m_announced.owner_before(profile))
        return;
    m_announced = profile;
    Q_EMIT chosenChanged(profile);
}

void ProfileChooser::addProfile(const std::shared_ptr<ProfileDataWrapper>& profile)
{
    m_box->addItem(itemText(*profile), QVariant::fromValue(WeakProfile(profile)));
    m_box->setItemData(m_box->count() - 1,
        profile->isWritable() ? tr("A profile of yours") : tr("A built-in profile, which cannot be changed"),
        Qt::ToolTipRole);
}

std::shared_ptr<const ProfileDataWrapper> ProfileChooser::chosen() const
{
    return m_box->currentData().value<WeakProfile>().lock();
}

std::string ProfileChooser::chosenKey() const
{
    const std::shared_ptr<const ProfileDataWrapper> profile = chosen();
    return profile ? profile->key() : std::string();
}
