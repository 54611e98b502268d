#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class SaveReadOnlyProfile;
}

namespace dialogs {

/// Asks whether changes to a read-only profile are to be saved as a copy of it; accepted means yes.
class SaveReadOnlyProfile : public QDialog {
    Q_OBJECT

public:
    explicit SaveReadOnlyProfile(QWidget* parent = nullptr);
    ~SaveReadOnlyProfile() override;

private:
    std::unique_ptr<Ui::SaveReadOnlyProfile> m_ui;
};

} // namespace dialogs
