#include "SessionFiles.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace session_files {

QString suffix()
{
    return QStringLiteral("corvale-session");
}

QStringList nameFilters()
{
    return {QCoreApplication::translate("session_files", "Sessions (*.%1 *.session)").arg(suffix()),
        QCoreApplication::translate("session_files", "All files (*)")};
}

QString proposedName(const QString& what)
{
    QString name;
    for (const QChar character : what) {
        if (character.isLetterOrNumber() || QStringLiteral("_.").contains(character))
            name += character;
        else if (!name.isEmpty() && !name.endsWith(QLatin1Char('-')))
            name += QLatin1Char('-');
    }
    constexpr int longest = 60;
    name = name.left(longest);
    if (!name.isEmpty() && !name.endsWith(QLatin1Char('-')))
        name += QLatin1Char('-');
    return name + QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss")) + QLatin1Char('.')
        + suffix();
}

QString usualFolder(const QStringList& recent)
{
    return recent.isEmpty() ? QDir::homePath() : QFileInfo(recent.first()).path();
}

} // namespace session_files
