#include "ProfileSaving.h"

#include "PlainMessageBox.h"
#include "ProfileData.h"
#include "ProfileFile.h"

#include <QApplication>
#include <QCoreApplication>
#include <QInputDialog>
#include <QLineEdit>

#include <stdexcept>

namespace profilesaving {

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("profilesaving", text);
}

QWidget* owner(QWidget* parent)
{
    QWidget* const active = QApplication::activeWindow();
    return active ? active : parent;
}

/// The default of the file name dialog; a profile without any name has none.
QString suggestedName(const ProfileData& profile)
{
    try {
        return QString::fromStdString(profile.fileNameForSaving());
    } catch (const std::runtime_error&) {
        return {};
    }
}

/// Empty when the user cancelled or entered nothing.
std::string askForFileName(const ProfileData& profile, QWidget* parent)
{
    return QInputDialog::getText(
        owner(parent), tr("Choose a file name"), tr("File name:"), QLineEdit::Normal, suggestedName(profile))
        .toStdString();
}

void showFailure(const profilefile::Failure& failure, const std::string& path, QWidget* parent)
{
    PlainMessageBox(QMessageBox::Critical, QStringLiteral("Corvale GUI"), tr("Failed to save file"),
        failure.notOpened ? tr("Could not open file '%1'").arg(QString::fromStdString(path))
                          : QString::fromStdString(failure.reason),
        owner(parent))
        .exec();
}

bool write(const ProfileData& profile, const std::string& directory, QWidget* parent)
{
    const std::optional<profilefile::Failure> failure = profilefile::write(profile, directory);
    if (failure) {
        const std::string path = profilefile::pathFor(directory, profile.fileName()).string();
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
    const std::string newName = askForFileName(profile, parent);
    if (newName.empty())
        return false;
    const std::string oldName = profile.fileName();
    profile.setFileName(newName);
    const bool saved = write(profile, directory, parent);
    if (!saved)
        profile.setFileName(oldName);
    return saved;
}

} // namespace profilesaving
