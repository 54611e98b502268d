#include "ProgramRun.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <algorithm>

namespace {

const auto commandKey = QStringLiteral("command");
const auto folderKey = QStringLiteral("folder");
const auto environmentKey = QStringLiteral("environment");
const auto profileKey = QStringLiteral("profile");

/// As a shell does it, since people type it.
QString withHome(const QString& path)
{
    const bool isInHome = path == QLatin1String("~") || path.startsWith(QLatin1String("~/"));
    return isInHome ? QDir::homePath() + path.mid(1) : path;
}

bool isQuoteOpen(QString command)
{
    // Three quotes stand for one that is meant as such.
    return command.remove(QStringLiteral("\"\"\"")).count(QLatin1Char('"')) % 2 != 0;
}

} // namespace

QStringList ProgramRun::arguments() const
{
    QStringList arguments = QProcess::splitCommand(command);
    if (arguments.isEmpty() || arguments.first().isEmpty())
        return {};
    arguments.first() = withHome(arguments.first());
    return arguments;
}

QString ProgramRun::folderPath() const
{
    return withHome(folder.trimmed());
}

QString ProgramRun::name() const
{
    return QFileInfo(arguments().value(0)).fileName();
}

std::optional<ProgramRun::Problem> ProgramRun::problem() const
{
    if (arguments().isEmpty())
        return Problem{Field::Command, tr("Which program is to be run?")};
    if (isQuoteOpen(command))
        return Problem{Field::Command, tr("A quotation mark of the program's line is not closed.")};
    const QString path = folderPath();
    if (!path.isEmpty() && !QFileInfo(path).isDir())
        return Problem{Field::Folder, tr("There is no folder \"%1\".").arg(path)};
    if (!path.isEmpty() && !QFileInfo(path).isExecutable())
        return Problem{Field::Folder, tr("You may not enter the folder \"%1\".").arg(path)};
    return environmentProblem();
}

std::optional<ProgramRun::Problem> ProgramRun::environmentProblem() const
{
    for (const QString& line : environment) {
        const QString name = line.section(QLatin1Char('='), 0, 0);
        QString reason;
        if (!line.contains(QLatin1Char('=')))
            reason = tr("there is no \"=\" behind the name");
        else if (name.isEmpty())
            reason = tr("there is no name before the \"=\"");
        else if (std::any_of(name.begin(), name.end(), [](QChar c) { return c.isSpace(); }))
            reason = tr("there is a blank in the name");
        else if (name == QLatin1String("TMPDIR"))
            reason = tr("with another TMPDIR the program would not find this window");
        if (!reason.isEmpty())
            return Problem{Field::Environment,
                tr("The line \"%1\" of the environment is not understood: %2.").arg(line, reason)};
    }
    return std::nullopt;
}

QString ProgramRun::toText() const
{
    const QJsonObject object{{commandKey, command}, {folderKey, folder},
        {environmentKey, QJsonArray::fromStringList(environment)}, {profileKey, profile}};
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

std::optional<ProgramRun> ProgramRun::fromText(const QString& text)
{
    const QJsonObject object = QJsonDocument::fromJson(text.toUtf8()).object();
    // Runs of older versions have no profile.
    ProgramRun run{object.value(commandKey).toString(), object.value(folderKey).toString(), {},
        object.value(profileKey).toString()};
    const QJsonArray variables = object.value(environmentKey).toArray();
    for (const auto& variable : variables)
        run.environment.append(variable.toString());
    if (run.arguments().isEmpty())
        return std::nullopt;
    return run;
}

QString ProgramRun::quoted(QString argument)
{
    const bool hasBlank = std::any_of(argument.begin(), argument.end(), [](QChar c) { return c.isSpace(); });
    argument.replace(QLatin1Char('"'), QStringLiteral("\"\"\""));
    return hasBlank || argument.isEmpty() ? QLatin1Char('"') + argument + QLatin1Char('"') : argument;
}
