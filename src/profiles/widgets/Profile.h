#pragma once

#include "CurrentProfile.h"
#include "ProfileData.h"
#include "ProfileEditor.h"
#include "ProfileMetaTypes.h"

#include <QWidget>

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QLabel;
class QLineEdit;
class QTimer;

namespace Ui {
class profile;
}

namespace models {
class Profile;
} // namespace models

namespace widgets {

class EGLConfigTreeView;
class ESCapabilityTreeView;
class ESExtensionTreeView;
class ProfileNotices;
class ProfileTreeView;

/// The panel that shows a hardware profile and lets the user change it. Edits are made on copies in the
/// fields and trees; the current profile gets them when they are saved, and tells what to show.
class Profile : public QWidget, public ProfileEditor {
    Q_OBJECT

public:
    /// The current profile must live longer than the panel is used.
    explicit Profile(models::CurrentProfile& current, QWidget* parent = nullptr);
    ~Profile() override;

    /// Shows a profile, nothing for an expired one; modifying stays modifying, and viewing stays viewing.
    void setProfile(const WeakProfile& profile);
    /// Shows no profile.
    void clear();
    /// Makes a profile, shows it, and saves it under a name that the user gives. Unsaved edits are asked
    /// about before.
    void newProfile();
    /// Shows a new profile with that content in place of what is shown, unless the user does not want to
    /// leave that.
    void showNew(const ProfileData& content);
    void retranslateUi();

    bool hasUnsavedEdits() override;
    bool mayLeave() override;

public Q_SLOTS:
    void discardPressed();
    void editPressed();
    void savePressed();
    void saveAsPressed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class Mode : std::uint32_t { Modifying = 0, Viewing = 1 };

    /// A line edit with its label and the text of the document that it shows.
    struct Field {
        QLabel* label;
        QLineEdit* edit;
        const std::string& (ProfileData::*get)() const;
        void (ProfileData::*set)(const std::string&);
        QString shown;
    };

    /// Edits that "Discard" took.
    struct DiscardedEdits {
        std::unique_ptr<models::Profile> model;
        std::array<QString, 3> texts;
        /// 0 where they cannot be counted.
        std::size_t changes = 0;
        /// What they were made on, where that is not the profile that is shown now.
        std::optional<models::CurrentProfile::Unlisted> unlisted;
    };

    void setUpViews();
    void setUpNotices();
    void showWhetherEmpty();
    void showNotices();
    void noteChange();
    void showOther(const WeakProfile& profile);
    void showModel(std::unique_ptr<models::Profile> model);
    std::optional<DiscardedEdits> takeEdits();
    void bringBackEdits();
    void bringBackRows();
    void forgetTaken();
    void showText(Field& field, const QString& text);
    void fillFields(const ProfileData& document);
    void view();
    void modify();
    void setEditable(bool editable);
    std::array<ProfileTreeView*, 3> views() const;
    bool finishEdits();
    bool differsFromStored() const;
    void dropEdits();

    std::string write(ProfileData& document) const;
    void saveBy(bool (models::CurrentProfile::*save)(const ProfileData&));

    std::unique_ptr<Ui::profile> m_ui;
    ESCapabilityTreeView* m_capabilitiesView;
    ESExtensionTreeView* m_extensionsView;
    EGLConfigTreeView* m_eglConfigsView;
    std::unique_ptr<models::Profile> m_model;
    models::CurrentProfile& m_current;
    QTimer* m_comparison;
    ProfileNotices* m_notices = nullptr;
    /// The last one is on offer.
    std::vector<DiscardedEdits> m_discarded;
    Mode m_mode = Mode::Viewing;
    std::array<Field, 3> m_fields;
};

} // namespace widgets
