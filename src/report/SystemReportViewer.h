#pragma once

#include "SystemReport.h"

#include <QPlainTextEdit>

/// Shows a system report as text; before there is one, it says how to get one.
class SystemReportViewer : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit SystemReportViewer(QWidget* parent = nullptr);

public Q_SLOTS:
    void setReport(const SystemReport&);
    void setFont(const QFont&);
};
