#include "LauncherFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

namespace launcher_file {

namespace {

const auto name = QStringLiteral("corvale-run");

} // namespace

QString find()
{
    const QString folder = QCoreApplication::applicationDirPath();
    QString beside = QStandardPaths::findExecutable(name, {folder});
    if (!beside.isEmpty())
        return beside;
    const QString built = QStandardPaths::findExecutable(name, {folder + QStringLiteral("/../run/bin")});
    return built.isEmpty() ? QStandardPaths::findExecutable(name) : QDir::cleanPath(built);
}

QString missingText()
{
    return QCoreApplication::translate("launcher_file",
        "\"%1\", which starts programs, is neither in \"%2\" nor in a folder of PATH. Install Corvale GUI "
        "anew, or add the folder of \"%1\" to PATH and start this window again.")
        .arg(name, QDir::toNativeSeparators(QCoreApplication::applicationDirPath()));
}

} // namespace launcher_file
