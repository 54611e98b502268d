#include "DocumentationOpener.h"

#include "Preferences.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QPushButton>
#include <QUrl>

#include <string>
#include <utility>

namespace {

/// From the program's folder: where the product keeps its documents, where they are installed, and where they
/// are in the sources, whose builds are three folders deep.
constexpr const char* documentFolders[] = {
    "../../Documentation",
    CORVALE_INSTALLED_DOCUMENTS,
    "../../../docs",
};

bool canRead(const QString& path)
{
    const QFileInfo info(path);
    return info.isFile() && info.isReadable();
}

QString tr(const char* text)
{
    return QCoreApplication::translate("DocumentationOpener", text);
}

} // namespace

DocumentationOpener::DocumentationOpener(Preferences& preferences, QString programFolder)
    : m_preferences(preferences)
    , m_programFolder(std::move(programFolder))
{
}

QString DocumentationOpener::open(const QString& document, QWidget* parent)
{
    QString path = find(document);
    if (path.isEmpty()) {
        path = ask(document, parent);
        if (path.isEmpty())
            return {};
        m_preferences.set(settings::documentPath(document.toStdString()), path.toStdString());
    }
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        return tr("No program here opens \"%1\". Open it with a web browser.")
            .arg(QDir::toNativeSeparators(path));
    return {};
}

QStringList DocumentationOpener::places(const QString& document) const
{
    QStringList paths;
    for (const char* folder : documentFolders)
        paths.append(QDir::cleanPath(
            QStringLiteral("%1/%2/%3").arg(m_programFolder, QLatin1String(folder), document)));
    return paths;
}

QString DocumentationOpener::find(const QString& document) const
{
    const QString located =
        QString::fromStdString(m_preferences.get(settings::documentPath(document.toStdString())));
    const QStringList candidates = places(document) << located;
    for (const QString& path : candidates) {
        if (canRead(path))
            return path;
    }
    return {};
}

QString DocumentationOpener::ask(const QString& document, QWidget* parent) const
{
    QMessageBox question(QMessageBox::Question, tr("Document not found"),
        tr("\"%1\" was not found.").arg(document), QMessageBox::Cancel, parent);
    question.setInformativeText(tr("If you have it somewhere else, locate it. You will not be asked again."));
    question.setDetailedText(tr("Looked for:\n%1").arg(places(document).join(QLatin1Char('\n'))));
    QPushButton* locate = question.addButton(tr("&Locate..."), QMessageBox::AcceptRole);
    question.setDefaultButton(locate);
    question.exec();
    if (question.clickedButton() != locate)
        return {};
    return QFileDialog::getOpenFileName(parent, tr("Locate \"%1\"").arg(document), QDir::homePath(),
        tr("HTML documents (*.html *.htm);;All files (*)"));
}
