#include "ProfilePage.h"

#include "ProfileChooser.h"
#include "widgets/Profile.h"

#include <QVBoxLayout>

ProfilePage::ProfilePage(ProfileController* controller, ProfileChooser* chooser, QWidget* parent)
    : QWidget(parent)
    , m_chooser(chooser)
    , m_panel(new widgets::Profile(controller, this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_panel);
    m_panel->clear();
    connect(m_chooser, &ProfileChooser::chosenChanged, this, &ProfilePage::choiceChanged);
    m_panel->onNewProfileDiscarded([this] { showChosen(); });
}

void ProfilePage::choiceChanged(const WeakProfile& profile)
{
    if (m_isGoingBack)
        return;
    if (!m_panel->shows(profile) && m_panel->hasUnsavedEdits()) {
        if (!m_isLost && !m_panel->isUnsavedNew() && !m_chooser->has(m_panel->profile().lock())) {
            // The list has changed, not the user's mind.
            m_isLost = true;
            m_chosen = profile;
            Q_EMIT told(
                tr("The profile that you are changing is not in the list any more. \"Save\" keeps your "
                   "changes as a new one."));
            return;
        }
        const std::shared_ptr<const ProfileDataWrapper> wanted = profile.lock();
        if (!m_panel->mayLeave()) {
            m_isGoingBack = true;
            m_chooser->choose(m_chosen.lock());
            m_isGoingBack = false;
            return;
        }
        // Saving may have chosen what was saved.
        m_chooser->choose(wanted);
    }
    showChosen();
}

void ProfilePage::showChosen()
{
    const std::shared_ptr<const ProfileDataWrapper> chosen = m_chooser->chosen();
    m_chosen = chosen;
    m_isLost = false;
    if (!chosen)
        m_panel->clear();
    else if (!m_panel->shows(chosen))
        m_panel->setProfile(chosen);
}

void ProfilePage::newProfile()
{
    if (mayLeave())
        m_panel->newProfile();
}

bool ProfilePage::mayLeave()
{
    return m_panel->mayLeave();
}
