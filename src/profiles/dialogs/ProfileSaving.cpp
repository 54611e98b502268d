#include "ProfileSaving.h"

#include "PlainMessageBox.h"
#include "ProfileData.h"
#include "ProfileFile.h"

#include <QApplication>
#include <QCoreApplication>
#include <QInputDialog>
#include <QPushButton>

#include <filesystem>
#include <stdexcept>

namespace profile_saving {

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("profile_saving", text);
}

QWidget* owner(QWidget* parent)
{
    QWidget* active = QApplication::activeWindow();
    return active ? active : parent;
}

/// The default of the file name dialog; a profile without any name has none.
QString suggestedName(const ProfileData& profile)
{
    try {
        return QString::fromStdString(profile_file::nameForSaving(profile));
    } catch (const std::runtime_error&) {
        return {};
    }
}

/// Asks whether to replace a file; Cancel is the default.
bool isReplaceChosen(QMessageBox& box)
{
    const QAbstractButton* replace = box.addButton(tr("&Replace"), QMessageBox::DestructiveRole);
    box.setDefaultButton(QMessageBox::Cancel);
    box.exec();
    return box.clickedButton() == replace;
}

/// Whether the file may be written: there is none, or the user lets it go.
bool mayReplace(const std::filesystem::path& path, QWidget* parent)
{
    std::error_code error;
    if (!std::filesystem::exists(path, error))
        return true;
    PlainMessageBox box(QMessageBox::Warning, tr("Choose a file name"),
        tr("There is a file '%1' already.").arg(QString::fromStdString(path.filename().string())),
        tr("Replacing it drops the profile that is in it. Cancel to enter another name."), owner(parent),
        QMessageBox::Cancel);
    return isReplaceChosen(box);
}

/// The name that the user settles on; empty when they cancelled.
QString enteredName(const QString& suggested, QWidget* parent)
{
    QInputDialog dialog(parent);
    dialog.setWindowTitle(tr("Choose a file name"));
    dialog.setLabelText(tr("File name:"));
    dialog.setTextValue(suggested);
    dialog.setOkButtonText(tr("&Save"));
    // By itself it would be too narrow for most names, and for its title.
    constexpr int characters = 50;
    dialog.resize(dialog.fontMetrics().averageCharWidth() * characters, dialog.sizeHint().height());
    return dialog.exec() == QDialog::Accepted ? dialog.textValue() : QString();
}

/// Whether a profile can be saved under that name; a message box says why not.
bool isUsable(const std::string& name, const std::filesystem::path& path, QWidget* parent)
{
    std::error_code error;
    QString reason = QString::fromStdString(profile_file::whyNoFileName(name));
    if (reason.isEmpty() && std::filesystem::is_directory(path, error))
        reason = tr("There is a folder of that name.");
    if (reason.isEmpty())
        return true;
    PlainMessageBox(QMessageBox::Warning, tr("Choose a file name"),
        tr("'%1' cannot be the name of a profile's file.").arg(QString::fromStdString(name)),
        tr("%1\n\nEnter another name, for example \"board.xml\".").arg(reason), owner(parent))
        .exec();
    return false;
}

/// Asks again while a name cannot be used, or the user does not want to replace the file of that name. Empty
/// when they cancelled or entered nothing.
std::string askForFileName(const ProfileData& profile, const std::string& directory, QWidget* parent)
{
    QString name = suggestedName(profile);
    const auto isGood = [&](const std::string& wanted) {
        const std::filesystem::path path = profile_file::pathFor(directory, wanted);
        return isUsable(wanted, path, parent) && mayReplace(path, parent);
    };
    do {
        name = enteredName(name, owner(parent));
    } while (!name.isEmpty() && !directory.empty() && !isGood(name.toStdString()));
    return name.toStdString();
}

void showFailure(const profile_file::Failure& failure, const std::string& path, QWidget* parent)
{
    PlainMessageBox(QMessageBox::Critical, QStringLiteral("Corvale GUI"), tr("Failed to save file"),
        failure.notOpened ? tr("Could not open file '%1'").arg(QString::fromStdString(path))
                          : QString::fromStdString(failure.reason),
        owner(parent))
        .exec();
}

bool write(const ProfileData& profile, const std::string& directory, QWidget* parent)
{
    const std::optional<profile_file::Failure> failure = profile_file::write(profile, directory);
    if (failure) {
        const std::string path = profile_file::pathFor(directory, profile.fileName()).string();
        showFailure(*failure, path, parent);
    }
    return !failure;
}

} // namespace

bool save(ProfileData& profile, const std::string& directory, QWidget* parent)
{
    return profile.fileName().empty() ? saveAs(profile, directory, parent)
                                      : write(profile, directory, parent);
}

bool saveAs(ProfileData& profile, const std::string& directory, QWidget* parent)
{
    const std::string newName = askForFileName(profile, directory, parent);
    if (newName.empty())
        return false;
    const std::string oldName = profile.fileName();
    profile.setFileName(newName);
    const bool saved = write(profile, directory, parent);
    if (!saved)
        profile.setFileName(oldName);
    return saved;
}

bool mayReplaceForeign(const std::string& fileName, QWidget* parent)
{
    PlainMessageBox box(QMessageBox::Warning, tr("Save changes"),
        tr("The file '%1' is not the one that was loaded: another program has changed it, or it belongs to "
           "another profile.")
            .arg(QString::fromStdString(fileName)),
        tr("Replacing it drops what is in it. To keep both, cancel and save your changes with \"Save "
           "As...\"."),
        owner(parent), QMessageBox::Cancel);
    return isReplaceChosen(box);
}

} // namespace profile_saving
