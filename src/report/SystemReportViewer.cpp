#include "SystemReportViewer.h"

SystemReportViewer::SystemReportViewer(QWidget* parent)
    : QPlainTextEdit(parent)
{
    setAccessibleName(tr("System report"));
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByKeyboard | Qt::TextSelectableByMouse);
    setPlainText(QStringLiteral(
        "To generate a system report, run an application which loads the Corvale libraries and "
        "calls eglInitialize()."));
}

void SystemReportViewer::setReport(const SystemReport& report)
{
    setPlainText(report.toText());
}

void SystemReportViewer::setFont(const QFont& font)
{
    QPlainTextEdit::setFont(font);
}
