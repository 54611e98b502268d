#pragma once

#include "SystemReport.h"

#include <QPlainTextEdit>

/// Shows a system report as text; before there is one, it says how to get one.
class SystemReportViewer : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit SystemReportViewer(QWidget* parent = nullptr);

    /// The report's text, empty while there is none.
    const QString& text() const { return m_text; }

Q_SIGNALS:
    /// There is a report now, or none any more.
    void reportChanged(bool exists);

public Q_SLOTS:
    void setReport(const SystemReport&);
    void setFont(const QFont&);
    void clearReport();

private:
    void showText(const QString& text);

    QString m_text;
};
