#include "ProfileCopying.h"

#include "FileReplacement.h"
#include "GuardedFile.h"
#include "Limits.h"
#include "PlainMessageBox.h"
#include "ProfileData.h"
#include "ProfileReader.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPushButton>

#include <filesystem>

namespace {

QString tr(const char* text)
{
    return QCoreApplication::translate("profile_copying", text);
}

std::filesystem::path filePath(const QString& name)
{
    return QFile::encodeName(name).toStdString();
}

/// A path in the folder at which nothing is: the file's name, or that with a number.
QString freePath(const QDir& folder, const QFileInfo& file)
{
    QString path = folder.absoluteFilePath(file.fileName());
    for (int number = 2; QFileInfo::exists(path) || QFileInfo(path).isSymLink(); ++number)
        path = folder.absoluteFilePath(
            QStringLiteral("%1 (%2).%3").arg(file.completeBaseName()).arg(number).arg(file.suffix()));
    return path;
}

/// Empty, or why the file was not copied.
std::string copy(const QString& from, const QString& to)
{
    const platform::FileBytes read = platform::readFile(filePath(from), platform::limits::fileSize);
    return read.ok ? platform::replaceFile(filePath(to), read.bytes).reason : read.reason;
}

void showFailure(const QString& path, const QString& reason, QWidget* parent)
{
    PlainMessageBox(QMessageBox::Critical, QStringLiteral("Corvale GUI"),
        tr("\"%1\" cannot be opened").arg(QFileInfo(path).fileName()), reason, parent)
        .exec();
}

bool userAgrees(const QString& path, const QString& folder, QWidget* parent)
{
    PlainMessageBox question(QMessageBox::Question, QStringLiteral("Corvale GUI"),
        tr("\"%1\" is not in the profiles directory").arg(QFileInfo(path).fileName()),
        tr("Only profiles in the directory can be chosen. Copy \"%1\" to \"%2\"?").arg(path, folder), parent,
        QMessageBox::Cancel);
    QPushButton* accept = question.addButton(tr("&Copy and Choose"), QMessageBox::AcceptRole);
    question.setDefaultButton(accept);
    question.exec();
    return question.clickedButton() == accept;
}

} // namespace

namespace profile_copying {

QString offerCopy(const QString& path, const std::string& directory, QWidget* parent)
{
    try {
        readProfileFile(filePath(path).string());
    } catch (const ProfileError& error) {
        showFailure(path, QString::fromStdString(error.what()), parent);
        return {};
    }
    const QDir folder(QString::fromStdString(directory));
    if (directory.empty() || !folder.exists()) {
        showFailure(path,
            tr("It is not in the profiles directory, and there is no such directory to copy it to. Choose "
               "one "
               "with Edit > Preferences."),
            parent);
        return {};
    }
    if (!userAgrees(path, folder.path(), parent))
        return {};
    QString target = freePath(folder, QFileInfo(path));
    const std::string reason = copy(path, target);
    if (reason.empty())
        return target;
    showFailure(path, QString::fromStdString(reason), parent);
    return {};
}

} // namespace profile_copying
