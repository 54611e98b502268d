#include "SaveReadOnlyProfile.h"

#include "ui_SaveReadOnlyProfile.h"

namespace dialogs {

SaveReadOnlyProfile::SaveReadOnlyProfile(QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::SaveReadOnlyProfile>())
{
    m_ui->setupUi(this);
}

SaveReadOnlyProfile::~SaveReadOnlyProfile() = default;

} // namespace dialogs
