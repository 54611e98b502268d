#pragma once

#include <QString>
#include <QStringList>

/// How the window names session files.
namespace session_files {

/// Without the dot.
QString suffix();
/// Of file dialogs.
QStringList nameFilters();
/// A name that any system takes for a file: of what, and now.
QString proposedName(const QString& what);
/// The folder of the first of these files, else that of the user.
QString usualFolder(const QStringList& recent);

} // namespace session_files
