#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <optional>

/// A program as the user asks for it to be run.
struct ProgramRun {
    Q_DECLARE_TR_FUNCTIONS(ProgramRun)

public:
    /// The profile that stands for the machine as it is.
    static QString hostProfile() { return QStringLiteral("Host"); }

    enum class Field { Command, Folder, Environment };
    struct Problem {
        Field field;
        QString text; ///< For the user.
    };

    QString command; ///< Program and arguments on one line; what has blanks stands in double quotes.
    QString folder; ///< Where it runs; that of this process if empty. "~" is the home folder.
    QStringList environment; ///< NAME=value, in addition to the environment of this process.
    /// The profile whose device it sees, as the launcher takes it; that which is chosen in the window if
    /// empty.
    QString profile = {};

    /// The program and its arguments one by one; empty if there is no program.
    QStringList arguments() const;
    /// The folder as a path; empty for that of this process.
    QString folderPath() const;
    /// What people call it: the file name of the program.
    QString name() const;
    /// What keeps it from being run.
    std::optional<Problem> problem() const;

    /// As one text that fromText() understands.
    QString toText() const;
    /// Nothing if the text is none of ours.
    static std::optional<ProgramRun> fromText(const QString& text);

    /// Puts an argument into double quotes where it needs them.
    static QString quoted(QString argument);

    bool operator==(const ProgramRun&) const = default;

private:
    std::optional<Problem> environmentProblem() const;
};
