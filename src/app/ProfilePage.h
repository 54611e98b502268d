#pragma once

#include "ProfileMetaTypes.h"

#include <QWidget>

class ProfileChooser;
class ProfileController;

namespace widgets {
class Profile;
}

/// The page of the window that shows the profile which is chosen above it. A choice that would drop changes
/// of the user's asks first.
class ProfilePage : public QWidget {
    Q_OBJECT

public:
    /// The chooser and the controller must live as long as the page is used; the controller may be none.
    ProfilePage(ProfileController* controller, ProfileChooser* chooser, QWidget* parent = nullptr);

    /// Makes a profile that the user can change.
    void newProfile();

    /// Asks about changes that are not saved. False when the user wants to stay.
    bool mayLeave();

Q_SIGNALS:
    /// Something to tell in the status bar.
    void told(const QString& text);

private:
    void choiceChanged(const WeakProfile& profile);
    void showChosen();

    ProfileChooser* m_chooser;
    widgets::Profile* m_panel;
    /// The panel still shows changes to a profile that the list has lost.
    bool m_isLost = false;
    /// What was chosen last, to go back to.
    WeakProfile m_chosen;
    bool m_isGoingBack = false;
};
