#include "RunProgramDialog.h"

#include "ui_RunProgramDialog.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QPushButton>

namespace {

/// Lines of the field for the environment.
constexpr int environmentLines = 4;

/// A run as the list of recent ones shows it.
QString itemText(const ProgramRun& run)
{
    constexpr qsizetype longestText = 80;
    QString text = run.command.simplified();
    if (!run.folder.isEmpty())
        text = RunProgramDialog::tr("%1 in %2").arg(text, QDir::toNativeSeparators(run.folder));
    return text.size() <= longestText ? text : text.left(longestText - 1) + QChar(0x2026);
}

} // namespace

RunProgramDialog::RunProgramDialog(
    const QList<ProgramRun>& recent, const QList<RunProfile>& profiles, QWidget* parent)
    : QDialog(parent)
    , m_ui(std::make_unique<Ui::RunProgramDialog>())
    , m_recent(recent)
{
    m_ui->setupUi(this);
    QPushButton* run = m_ui->buttonBox->button(QDialogButtonBox::Ok);
    run->setText(tr("&Run"));
    run->setEnabled(false);
    m_ui->edtFolder->setPlaceholderText(QDir::toNativeSeparators(QDir::currentPath()));
    QPlainTextEdit* environment = m_ui->txtEnvironment;
    environment->setMinimumHeight(environment->fontMetrics().lineSpacing() * environmentLines
        + 2 * static_cast<int>(environment->document()->documentMargin()) + 2 * environment->frameWidth());
    m_ui->lblProblem->hide();

    connect(m_ui->edtProgram, &QLineEdit::textChanged, this, [this, run] {
        run->setEnabled(!this->run().arguments().isEmpty());
        clearProblem();
    });
    connect(m_ui->edtFolder, &QLineEdit::textChanged, this, &RunProgramDialog::clearProblem);
    connect(environment, &QPlainTextEdit::textChanged, this, &RunProgramDialog::clearProblem);
    connect(m_ui->btnBrowseProgram, &QPushButton::clicked, this, &RunProgramDialog::browseProgram);
    connect(m_ui->btnBrowseFolder, &QPushButton::clicked, this, &RunProgramDialog::browseFolder);
    for (const RunProfile& profile : profiles)
        m_ui->cmbProfile->addItem(profile.text, profile.name);
    setUpRecent();
    m_ui->edtProgram->selectAll();
    m_ui->edtProgram->setFocus();
}

RunProgramDialog::~RunProgramDialog() = default;

void RunProgramDialog::setUpRecent()
{
    for (const ProgramRun& run : m_recent)
        m_ui->cmbRecent->addItem(itemText(run));
    m_ui->lblRecent->setVisible(!m_recent.isEmpty());
    m_ui->cmbRecent->setVisible(!m_recent.isEmpty());
    // Also for the one that is shown already: its fields may have been changed since.
    connect(m_ui->cmbRecent, &QComboBox::activated, this, [this](int index) { fill(m_recent.at(index)); });
    if (!m_recent.isEmpty())
        fill(m_recent.first());
}

void RunProgramDialog::fill(const ProgramRun& run)
{
    m_ui->edtProgram->setText(run.command);
    m_ui->edtFolder->setText(run.folder);
    m_ui->txtEnvironment->setPlainText(run.environment.join(QLatin1Char('\n')));
    showProfile(run.profile);
}

void RunProgramDialog::showProfile(const QString& name)
{
    QComboBox& box = *m_ui->cmbProfile;
    if (box.findData(name) < 0)
        box.addItem(tr("%1 (not there any more)").arg(name), name);
    box.setCurrentIndex(box.findData(name));
}

ProgramRun RunProgramDialog::run() const
{
    ProgramRun run{m_ui->edtProgram->text().trimmed(), m_ui->edtFolder->text().trimmed(), {},
        m_ui->cmbProfile->currentData().toString()};
    for (const QString& line : m_ui->txtEnvironment->toPlainText().split(QLatin1Char('\n'))) {
        if (!line.trimmed().isEmpty())
            run.environment.append(line);
    }
    return run;
}

void RunProgramDialog::accept()
{
    const auto problem = run().problem();
    if (!problem) {
        QDialog::accept();
        return;
    }
    m_ui->lblProblem->setText(problem->text);
    m_ui->lblProblem->show();
    switch (problem->field) {
    case ProgramRun::Field::Command:
        m_ui->edtProgram->setFocus();
        break;
    case ProgramRun::Field::Folder:
        m_ui->edtFolder->setFocus();
        break;
    case ProgramRun::Field::Environment:
        m_ui->txtEnvironment->setFocus();
        break;
    }
}

void RunProgramDialog::clearProblem()
{
    m_ui->lblProblem->hide();
}

void RunProgramDialog::browseProgram()
{
    QStringList arguments = run().arguments();
    const QFileInfo present(arguments.value(0));
    const QString start = present.isAbsolute() ? present.path() : run().folderPath();
    const QString file = QFileDialog::getOpenFileName(this, tr("Choose program"), start);
    if (file.isEmpty())
        return;
    // The arguments are kept: it may be another build of the same program.
    QStringList line{ProgramRun::quoted(file)};
    for (const QString& argument : arguments.mid(1))
        line.append(ProgramRun::quoted(argument));
    m_ui->edtProgram->setText(line.join(QLatin1Char(' ')));
}

void RunProgramDialog::browseFolder()
{
    const QString folder = QFileDialog::getExistingDirectory(
        this, tr("Choose folder"), run().folderPath(), QFileDialog::ShowDirsOnly);
    if (!folder.isEmpty())
        m_ui->edtFolder->setText(QDir::toNativeSeparators(folder));
}
