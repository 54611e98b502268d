#pragma once

#include "RecentFilesMenu.h"

namespace models {
class CurrentProfile;
}

/// A menu of the profile files that were used last. An entry chooses its profile; of a file outside of the
/// profiles folder the user may make a copy there.
class RecentProfilesMenu : public RecentFilesMenu {
    Q_OBJECT

public:
    /// The store and the current profile must live longer. Questions are asked before the parent.
    RecentProfilesMenu(Preferences& preferences, models::CurrentProfile& profile, QWidget* parent);

Q_SIGNALS:
    /// A profile of the menu is now the chosen one.
    void profileChosen();

private:
    void open(const QString& path);
    void tellMissing(const QString& path);

    models::CurrentProfile& m_profile;
};
