#pragma once

#include <QObject>

#include <memory>

class ProfileDataWrapper;
class QComboBox;

namespace models {
class CurrentProfile;
}

/// Shows in a combo box the profiles to choose from: "Host", which is none, the built-in profiles, and the
/// user's. Each item's data is a std::weak_ptr<const ProfileDataWrapper>. The box follows the current
/// profile; what the user picks there is passed on by pick().
class ProfileChooser : public QObject {
    Q_OBJECT

public:
    /// The current profile must live as long as the box is used.
    ProfileChooser(models::CurrentProfile& current, QComboBox* box);

    /// Makes what the box shows the choice, and the box show the choice: the user may go back to it.
    void pick();

    /// What the user reads for a profile of the list. Files can share a device's name, so theirs is added.
    static QString itemText(const ProfileDataWrapper& profile);

private:
    void showList();
    void showChosen();
    void markEdits();
    void addProfile(const std::shared_ptr<ProfileDataWrapper>& profile);

    models::CurrentProfile& m_current;
    QComboBox* m_box;
};
