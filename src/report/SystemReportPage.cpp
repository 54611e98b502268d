#include "SystemReportPage.h"

#include "FileReplacement.h"
#include "FindBar.h"
#include "SystemReportGUIReceiver.h"
#include "TextFind.h"
#include "ui_SystemReportPage.h"

#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QGuiApplication>
#include <QMessageBox>

SystemReportPage::SystemReportPage(SystemReportGUIReceiver* receiver, QWidget* parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::SystemReportPage>())
{
    m_ui->setupUi(this);
    m_ui->pageLayout->insertWidget(1, new FindBar(new TextFind(m_ui->viewer), this));
    connect(receiver, SIGNAL(ready(const SystemReport&)), m_ui->viewer, SLOT(setReport(const SystemReport&)));
    connect(m_ui->btnClear, &QPushButton::clicked, receiver, &SystemReportGUIReceiver::clear);
    connect(m_ui->btnClear, &QPushButton::clicked, m_ui->viewer, &SystemReportViewer::clearReport);
    for (QPushButton* button : {m_ui->btnCopy, m_ui->btnSaveReport})
        connect(m_ui->viewer, &SystemReportViewer::reportChanged, button, &QWidget::setEnabled);
    connect(m_ui->btnCopy, &QPushButton::clicked, this, &SystemReportPage::copy);
    connect(m_ui->btnSaveReport, &QPushButton::clicked, this, &SystemReportPage::save);
}

SystemReportPage::~SystemReportPage() = default;

SystemReportViewer& SystemReportPage::viewer() const
{
    return *m_ui->viewer;
}

void SystemReportPage::copy()
{
    QGuiApplication::clipboard()->setText(m_ui->viewer->text());
    Q_EMIT statusMessage(tr("The system report was copied to the clipboard."));
}

void SystemReportPage::save()
{
    // The text as it is now: another report may come while the dialog is open.
    const std::string bytes = m_ui->viewer->text().toStdString();
    const QString path = QFileDialog::getSaveFileName(this, tr("Save System Report"),
        QDir::home().filePath(QStringLiteral("Corvale System Report.txt")),
        tr("Text files (*.txt);;All files (*)"));
    if (path.isEmpty())
        return;
    const platform::FileResult result = platform::replaceFile(QFile::encodeName(path).toStdString(), bytes);
    if (!result)
        QMessageBox::critical(this, tr("Save System Report"),
            tr("The report could not be saved: %1").arg(QString::fromStdString(result.reason)));
}
