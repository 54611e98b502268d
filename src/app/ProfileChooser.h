#pragma once

#include "ProfileMetaTypes.h"

#include <QObject>

#include <memory>
#include <string>

class ProfileCatalogue;
class QComboBox;

/// Fills a combo box with the profiles to choose from: "Host", which is none, the built-in profiles, and the
/// user's. Each item's data is a std::weak_ptr<const ProfileDataWrapper>.
class ProfileChooser : public QObject {
    Q_OBJECT

public:
    explicit ProfileChooser(QComboBox* box);

    /// Shows the catalogue's profiles. The chosen one stays chosen as long as the catalogue has it, saved or
    /// not; else it is the remembered one, and "Host" if that is not there either. What is remembered stays.
    void show(const ProfileCatalogue& catalogue);
    /// Whether the profile is in the list.
    bool has(const std::shared_ptr<const ProfileDataWrapper>& profile) const;
    /// Chooses a profile of the list, as the user would; none is "Host".
    void choose(const std::shared_ptr<const ProfileDataWrapper>& profile);

    /// The chosen profile, none for "Host".
    std::shared_ptr<const ProfileDataWrapper> chosen() const;
    /// The key of the chosen profile, empty for "Host".
    std::string chosenKey() const;

Q_SIGNALS:
    /// Another profile than before is chosen, by whatever means; never emitted for a profile that stays
    /// chosen while the list is shown anew. One that the catalogue has dropped is still alive here if the
    /// caller of show() holds it.
    void chosenChanged(const WeakProfile& profile);

private:
    int indexOf(const ProfileDataWrapper* profile) const;
    void announce();
    void addProfile(const std::shared_ptr<ProfileDataWrapper>& profile);

    QComboBox* m_box;
    /// What was announced last.
    WeakProfile m_announced;
};
