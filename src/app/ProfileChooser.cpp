#include "ProfileChooser.h"

#include "CurrentProfile.h"
#include "ProfileCatalogue.h"
#include "ProfileData.h"
#include "ProfileDataWrapper.h"
#include "ProfileMetaTypes.h"

#include <QComboBox>
#include <QIcon>
#include <QSignalBlocker>

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

} // namespace

ProfileChooser::ProfileChooser(models::CurrentProfile& current, QComboBox* box)
    : QObject(box)
    , m_current(current)
    , m_box(box)
{
    m_box->setToolTip(tr("The hardware that applications are to find; \"Host\" is this computer's own"));
    m_box->addItem(tr("Host"));
    connect(&m_current, &models::CurrentProfile::listChanged, this, &ProfileChooser::showList);
    connect(&m_current, &models::CurrentProfile::chosenChanged, this, &ProfileChooser::showChosen);
    connect(&m_current, &models::CurrentProfile::editedChanged, this, &ProfileChooser::markEdits);
}

QString ProfileChooser::itemText(const ProfileDataWrapper& profile)
{
    constexpr qsizetype longestName = 120;
    QString name = nameOf(profile.data()).left(longestName);
    const QString file = QString::fromStdString(profile.data().fileName());
    if (!profile.isWritable() || file.isEmpty() || file == name)
        return name;
    return QStringLiteral("%1 (%2)").arg(name, file);
}

void ProfileChooser::pick()
{
    m_current.choose(m_box->currentData().value<WeakProfile>().lock());
    showChosen();
}

void ProfileChooser::showList()
{
    const QSignalBlocker blocker(m_box);
    m_box->clear();
    m_box->addItem(tr("Host"));
    const ProfileCatalogue& catalogue = *m_current.catalogue();
    for (const auto* profiles : {&catalogue.builtinProfiles(), &catalogue.userProfiles()}) {
        for (const std::shared_ptr<ProfileDataWrapper>& profile : *profiles)
            addProfile(profile);
    }
    showChosen();
}

void ProfileChooser::showChosen()
{
    // Only what the user picks is a wish.
    const QSignalBlocker blocker(m_box);
    const auto chosen = m_current.chosen();
    for (int i = 0; i < m_box->count(); ++i) {
        if (m_box->itemData(i).value<WeakProfile>().lock() == chosen) {
            m_box->setCurrentIndex(i);
            break;
        }
    }
    markEdits();
}

/// Puts a pencil beside the profile that has unsaved edits; its name stays what it is.
void ProfileChooser::markEdits()
{
    const bool isChosen = m_current.state() == models::CurrentProfile::State::Listed;
    const QIcon pencil(QStringLiteral(":/CorvaleResources/Edit"));
    for (int i = 0; i < m_box->count(); ++i) {
        const bool isMarked = i == m_box->currentIndex() && isChosen && m_current.isEdited();
        m_box->setItemIcon(i, isMarked ? pencil : QIcon());
    }
}

void ProfileChooser::addProfile(const std::shared_ptr<ProfileDataWrapper>& profile)
{
    m_box->addItem(itemText(*profile), QVariant::fromValue(WeakProfile(profile)));
    m_box->setItemData(m_box->count() - 1,
        profile->isWritable() ? tr("A profile of yours") : tr("A built-in profile, which cannot be changed"),
        Qt::ToolTipRole);
}
