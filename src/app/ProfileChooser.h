#pragma once

#include <QObject>

#include <memory>
#include <string>

class ProfileCatalogue;
class ProfileDataWrapper;
class QComboBox;

/// Fills a combo box with the profiles to choose from: "Host", which is none, the built-in profiles, and the
/// user's. Each item's data is a std::weak_ptr<const ProfileDataWrapper>.
class ProfileChooser : public QObject {
    Q_OBJECT

public:
    explicit ProfileChooser(QComboBox* box);

    /// Shows the catalogue's profiles and chooses the remembered one, "Host" if it is not there. Tells nobody
    /// of a changed choice.
    void show(const ProfileCatalogue& catalogue);

    /// The key of the chosen profile, empty for "Host".
    std::string chosenKey() const;

private:
    void addProfile(const std::shared_ptr<ProfileDataWrapper>& profile);

    QComboBox* m_box;
};
