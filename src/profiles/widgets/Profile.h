#pragma once

#include "ProfileController.h"
#include "ProfileData.h"
#include "ProfileMetaTypes.h"

#include <QWidget>

#include <array>
#include <functional>
#include <memory>
#include <optional>

class QLabel;
class QLineEdit;

namespace Ui {
class profile;
}

namespace models {
class Profile;
}

namespace widgets {

class EGLConfigTreeView;
class ESCapabilityTreeView;
class ESExtensionTreeView;
class ProfileTreeView;

/// The panel that shows a hardware profile and lets the user change it. Changes are made on copies in the
/// fields and trees; the document gets them when they are saved.
class Profile : public QWidget {
    Q_OBJECT

public:
    /// The controller must live longer than the panel is used; without one nothing can be saved.
    explicit Profile(ProfileController* controller, QWidget* parent = nullptr);
    ~Profile() override;

    /// Shows a profile; modifying stays modifying, and viewing stays viewing.
    void setProfile(const WeakProfile& profile);
    /// Shows no profile.
    void clear();
    /// Makes a profile, shows it, and saves it under a name that the user gives.
    void newProfile();
    void retranslateUi();

    /// Whether the panel holds changes that are in no file.
    bool hasUnsavedEdits() const;
    /// Asks what to do with unsaved changes, if there are any, and does it. False when the user wants to go
    /// on editing, or when saving failed.
    bool mayLeave();

    const WeakProfile& profile() const { return m_profile; }
    /// Whether that is the profile the panel shows.
    bool shows(const WeakProfile& profile) const;

    /// Whether it shows a new profile that is in no file; profile() is another one then.
    bool isUnsavedNew() const { return m_isUnsavedNew; }

    /// Calls back when it has gone from a new profile to the one before, which need not be the chosen one.
    void onNewProfileDiscarded(std::function<void()> callback)
    {
        m_newProfileDiscarded = std::move(callback);
    }

public Q_SLOTS:
    void discardPressed();
    void editPressed();
    void savePressed();
    void saveAsPressed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class Mode : std::uint32_t { Modifying = 0, Viewing = 1 };
    using Pointer = ProfileController::Pointer;

    /// A line edit with its label and the text of the document that it shows.
    struct Field {
        QLabel* label;
        QLineEdit* edit;
        const std::string& (ProfileData::*get)() const;
        void (ProfileData::*set)(const std::string&);
        QString shown;
    };

    void setUpViews();
    void showText(Field& field, const QString& text);
    void fillFields(const ProfileData& document);
    void view();
    void modify();
    void setEditable(bool editable);
    std::array<ProfileTreeView*, 3> views() const;
    void finishEdits();

    bool save();
    bool saveCopy(const Pointer& copy);
    bool saveInPlace(const std::shared_ptr<const ProfileDataWrapper>& profile);
    bool mayReplaceFile(const ProfileDataWrapper& profile, const std::string& directory);
    void restoreStored();
    Pointer copyOfStored();
    bool writeInto(ProfileData& document);
    std::string write(ProfileData& document) const;
    void saved(const std::shared_ptr<const ProfileDataWrapper>& profile, const std::string& directory);

    std::unique_ptr<Ui::profile> m_ui;
    ESCapabilityTreeView* m_capabilitiesView;
    ESExtensionTreeView* m_extensionsView;
    EGLConfigTreeView* m_eglConfigsView;
    std::unique_ptr<models::Profile> m_model;
    ProfileController* m_controller;
    Mode m_mode = Mode::Viewing;
    WeakProfile m_profile;
    std::array<Field, 3> m_fields;
    /// What is in the file, as far as the panel knows: what fields and trees are compared with.
    std::optional<ProfileData> m_stored;
    /// The panel shows a new profile that was not saved, while m_profile is the one before it.
    bool m_isUnsavedNew = false;
    std::function<void()> m_newProfileDiscarded;
};

} // namespace widgets
