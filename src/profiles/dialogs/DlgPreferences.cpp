#include "DlgPreferences.h"

#include "ClickableLabel.h"
#include "ElidedLabel.h"
#include "FileListWidget.h"
#include "PlainMessageBox.h"
#include "PlainToolTip.h"
#include "Preferences.h"
#include "ProfileImport.h"
#include "ui_DlgPreferences.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFont>
#include <QPushButton>
#include <QWhatsThis>

namespace {

/// The height up to which the dialog can be stretched while it shows everything.
constexpr int expandedMaximumHeight = 16777125;

/// Entries of a failure's explanation at most.
constexpr qsizetype mostExplained = 5;

std::filesystem::path filePath(const QString& name)
{
    return QFile::encodeName(name).toStdString();
}

} // namespace

DlgPreferences::DlgPreferences(Preferences* preferences, QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::DlgPreferences>())
    , m_preferences(preferences)
{
    m_ui->setupUi(this);
    addHelpLabel();
    addFileList();
    addDirectoryHint();
    m_directoryBefore = QString::fromStdString(m_preferences->get(settings::profilesDirectory));
    m_ui->txtProfilesDirectory->setText(m_directoryBefore);
    explainDirectory();
    m_ui->grpProfilesAdvanced->hide();
    m_ui->btnImport->setEnabled(false);
    const bool strict = m_preferences->get(settings::strictContextMode);
    (strict ? m_ui->radioStrict : m_ui->radioLoose)->setChecked(true);

    const int oldWidth = width();
    adjustSize();
    resize(oldWidth, height());
    setMaximumHeight(height());
    setUpConnections();
}

DlgPreferences::~DlgPreferences() = default;

void DlgPreferences::addHelpLabel()
{
    m_contextModeHelp = new ClickableLabel(this);
    m_contextModeHelp->setObjectName(QStringLiteral("lblContextModeHelp"));
    m_contextModeHelp->setAccessibleName(tr("What's this? About the context creation mode"));
    QFont font = m_contextModeHelp->font();
    font.setPointSize(9);
    m_contextModeHelp->setFont(font);
    m_contextModeHelp->setText(
        tr("<html><img src=':/CorvaleResources/Info' width='16' height='16'> What's this?</html>"));
    m_ui->contextModeLayout->insertWidget(m_ui->contextModeLayout->count() - 1, m_contextModeHelp);
    setTabOrder(m_ui->radioLoose, m_contextModeHelp);
}

void DlgPreferences::addFileList()
{
    m_files = new FileListWidget(this);
    m_files->setObjectName(QStringLiteral("lstImportFiles"));
    m_ui->importLayout->addWidget(m_files, 1, 0);
    m_ui->lblImportFiles->setBuddy(m_files);
    m_files->setAccessibleName(tr("Profile data files"));
    setTabOrder(m_ui->chkExpandProfilesAdvanced, m_files);
}

void DlgPreferences::addDirectoryHint()
{
    m_directoryHint = new ElidedLabel(this);
    m_directoryHint->setObjectName(QStringLiteral("lblDirectoryHint"));
    m_ui->profilesLayout->insertWidget(1, m_directoryHint);
}

/// Says which directory is in force, and why.
void DlgPreferences::explainDirectory()
{
    const QString entered = m_ui->txtProfilesDirectory->text();
    const QString ofEnvironment = QString::fromStdString(settings::profilesDirectoryOfEnvironment());
    QString hint;
    if (!entered.isEmpty() && !QFileInfo(entered).isDir())
        hint = tr("There is no such directory yet.");
    else if (entered.isEmpty() && ofEnvironment.isEmpty())
        hint = tr("No directory is in force: choose where your profiles are to be kept.");
    else if (entered.isEmpty())
        hint = tr("In force: \"%1\", from the environment variable CORVALE_PROFILE_PATH.").arg(ofEnvironment);
    else if (entered == ofEnvironment)
        hint = tr("In force, as the environment variable CORVALE_PROFILE_PATH says.");
    else if (!ofEnvironment.isEmpty())
        hint = tr("In force instead of \"%1\", which CORVALE_PROFILE_PATH says.").arg(ofEnvironment);
    else
        hint = tr("In force, as chosen here.");
    m_directoryHint->setText(hint);
    m_directoryHint->setToolTip(plainToolTip(hint));
}

void DlgPreferences::setUpConnections()
{
    connect(m_ui->txtProfilesDirectory, &QLineEdit::textChanged, this, &DlgPreferences::explainDirectory);
    connect(m_ui->btnBrowse, SIGNAL(clicked()), SLOT(browseProfilesDirectory()));
    connect(m_ui->chkExpandProfilesAdvanced, SIGNAL(stateChanged(int)), SLOT(advancedExpandChanged(int)));
    connect(m_ui->btnImportBrowse, SIGNAL(clicked()), SLOT(importBrowseProfiles()));
    connect(m_ui->btnImport, SIGNAL(clicked()), SLOT(importProfiles()));
    connect(m_ui->buttonBox, SIGNAL(accepted()), SLOT(accept()));
    connect(m_ui->buttonBox, SIGNAL(rejected()), SLOT(close()));
    connect(m_files, SIGNAL(itemsChanged()), SLOT(updateImportButtonText()));
    connect(m_contextModeHelp, SIGNAL(clicked()), SLOT(showWhatsThisContextMode()));
}

void DlgPreferences::accept()
{
    const QString directory = m_ui->txtProfilesDirectory->text();
    const Preferences::Change mode(settings::strictContextMode, m_ui->radioStrict->isChecked());
    if (directory == m_directoryBefore) {
        // A directory that comes from the environment must not be in the way of its next value.
        m_preferences->set({mode});
    } else {
        if (!isDirectoryUsable())
            return;
        m_preferences->set({{settings::profilesDirectory, directory.toStdString()}, mode});
    }
    close();
}

bool DlgPreferences::isDirectoryUsable()
{
    const QString directory = m_ui->txtProfilesDirectory->text();
    if (directory.isEmpty() || QFileInfo(directory).isDir())
        return true;
    const auto tell = [this, &directory](const QString& reason) {
        PlainMessageBox(QMessageBox::Warning, windowTitle(), tr("The directory cannot be used"),
            reason.arg(directory), this)
            .exec();
        m_ui->txtProfilesDirectory->setFocus();
        return false;
    };
    if (QFileInfo::exists(directory))
        return tell(tr("\"%1\" is no directory."));
    PlainMessageBox question(QMessageBox::Question, windowTitle(), tr("There is no such directory"),
        tr("\"%1\" does not exist. Make it, and keep profiles there?").arg(directory), this,
        QMessageBox::Cancel);
    QPushButton* make = question.addButton(tr("&Make Directory"), QMessageBox::AcceptRole);
    question.setDefaultButton(make);
    question.exec();
    if (question.clickedButton() != make)
        return false;
    return QDir().mkpath(directory) || tell(tr("\"%1\" could not be made. May you write in its folder?"));
}

void DlgPreferences::browseProfilesDirectory()
{
    const QString directory = QFileDialog::getExistingDirectory(this, tr("Choose directory"),
        m_ui->txtProfilesDirectory->text(), QFileDialog::ShowDirsOnly | QFileDialog::DontResolveSymlinks);
    if (!directory.isEmpty())
        m_ui->txtProfilesDirectory->setText(directory);
}

void DlgPreferences::importBrowseProfiles()
{
    m_files->addFiles(QFileDialog::getOpenFileNames(
        this, tr("Select profile data files"), QString(), tr("XML files (*.xml);;All files (*)")));
}

void DlgPreferences::updateImportButtonText()
{
    m_ui->btnImport->setText(m_files->count() < 2 ? tr("Import") : tr("Merge"));
    m_ui->btnImport->setEnabled(m_files->count() > 0);
}

void DlgPreferences::importProfiles()
{
    ProfileImport import;
    QStringList leftOut;
    for (const QString& file : m_files->files()) {
        const std::string reason = import.add(filePath(file));
        if (!reason.empty() && leftOut.size() < mostExplained)
            leftOut.append(tr("\"%1\" cannot be read: %2").arg(file, QString::fromStdString(reason)));
    }
    if (!import.isProfile()) {
        const QString expected = tr("The first file must begin with its <profile> element, which has an <es> "
                                    "element and behind it an <egl> element.");
        PlainMessageBox(QMessageBox::Critical, tr("Failed to import profile"),
            tr("Import failed. Data badly formatted"),
            leftOut.isEmpty() ? expected : leftOut.join(QLatin1Char('\n')), this)
            .exec();
        return;
    }
    const QString path = QFileDialog::getSaveFileName(
        this, tr("Save file..."), m_ui->txtProfilesDirectory->text(), tr("XML files (*.xml)"));
    if (!path.isEmpty())
        saveImport(import, path);
}

void DlgPreferences::saveImport(const ProfileImport& import, const QString& path)
{
    const platform::FileResult saved = import.save(filePath(path));
    if (saved)
        m_savedFiles.append(path);
    else
        PlainMessageBox(QMessageBox::Critical, tr("Error"), tr("Failed to save file"),
            QString::fromStdString(saved.reason), this)
            .exec();
    m_files->clearFiles();
}

void DlgPreferences::advancedExpandChanged(int state)
{
    const bool expanded = state == Qt::Checked;
    m_ui->grpProfilesAdvanced->setVisible(expanded);
    if (expanded)
        setMaximumHeight(expandedMaximumHeight);
    const int oldWidth = width();
    // Each ancestor learns of its new size only when the one inside of it has been adjusted.
    for (QWidget* widget = m_ui->grpProfilesAdvanced; widget != this; widget = widget->parentWidget())
        widget->adjustSize();
    adjustSize();
    resize(oldWidth, height());
    if (!expanded)
        setMaximumHeight(height());
}

void DlgPreferences::showWhatsThisContextMode()
{
    QWhatsThis::showText(m_contextModeHelp->mapToGlobal(QPoint()),
        tr("<html><p>In <b>strict context mode</b>, eglCreateContext will fail with EGL_BAD_ALLOC if the "
           "host system does not support the entire feature-set of the requested API.</p>\n<p>In <b>loose "
           "context mode</b>, eglCreateContext will return a context of the requested API type even if the "
           "entire feature-set is not supported by the host system. Unsupported features will fail at the "
           "point of use.</p></html>"),
        m_contextModeHelp);
}
