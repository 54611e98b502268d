#pragma once

#include <QWidget>

#include <memory>

class SystemReportGUIReceiver;
class SystemReportViewer;

namespace Ui {
class SystemReportPage;
}

/// The viewer with what can be done with a report: clear it, which readies the receiver for the next one,
/// copy it, and save it as a text file.
class SystemReportPage : public QWidget {
    Q_OBJECT

public:
    /// The receiver must live longer.
    explicit SystemReportPage(SystemReportGUIReceiver* receiver, QWidget* parent = nullptr);
    ~SystemReportPage() override;

    SystemReportViewer& viewer() const;

Q_SIGNALS:
    /// Something worth a passing message.
    void statusMessage(const QString& text);

private:
    void copy();
    void save();

    std::unique_ptr<Ui::SystemReportPage> m_ui;
};
