#include "SystemReportViewer.h"

#include "ReportText.h"

SystemReportViewer::SystemReportViewer(QWidget* parent)
    : QPlainTextEdit(parent)
{
    setObjectName(QStringLiteral("txtSystemReport"));
    setAccessibleName(tr("System report"));
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByKeyboard | Qt::TextSelectableByMouse);
    setTabChangesFocus(true);
    clearReport();
}

void SystemReportViewer::setReport(const SystemReport& report)
{
    showText(reportText(report));
}

void SystemReportViewer::setFont(const QFont& font)
{
    QPlainTextEdit::setFont(font);
}

void SystemReportViewer::clearReport()
{
    showText(QString());
}

void SystemReportViewer::showText(const QString& text)
{
    m_text = text;
    // Broken lines would spoil the columns of a report.
    setLineWrapMode(text.isEmpty() ? WidgetWidth : NoWrap);
    setPlainText(text.isEmpty()
            ? tr("To generate a system report, run an application which loads the Corvale libraries and "
                 "calls eglInitialize().")
            : text);
    Q_EMIT reportChanged(!text.isEmpty());
}
