#pragma once

#include <QString>
#include <QStringList>

class Preferences;
class QWidget;

/// Opens documents of the product with whatever the desktop opens them with. Where a document is not at one
/// of its places, the user is asked for it once, and the answer is kept in the preferences.
class DocumentationOpener {
public:
    /// Places are looked at from the folder of the program.
    DocumentationOpener(Preferences& preferences, QString programFolder);

    /// Opens a document by its file name; the parent is for questions. Returns what is to be told to the
    /// user, nothing when all went well or the user has given up.
    QString open(const QString& document, QWidget* parent);

private:
    QStringList places(const QString& document) const;
    QString find(const QString& document) const;
    QString ask(const QString& document, QWidget* parent) const;

    Preferences& m_preferences;
    QString m_programFolder;
};
