#pragma once

#include <QObject>
#include <QTimer>

#include <optional>

class ErrorListModel;
class QWidget;

/// Counts the errors and warnings that have come since somebody last looked at a widget: while it is to be
/// seen in the active window, there are none.
class UnseenErrors : public QObject {
    Q_OBJECT

public:
    /// The widget lives at least as long.
    UnseenErrors(const ErrorListModel& errors, QWidget& widget);

    /// Whether what comes from now on counts at all; it does at first.
    void setCounting(bool isCounting) { m_isCounting = isCounting; }

    int errors() const { return m_errorCount; }
    int warnings() const { return m_warningCount; }

Q_SIGNALS:
    /// Told a few times a second at most.
    void changed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool isSeen() const;
    void count(int first, int last);
    void tell();
    void clear();

    const ErrorListModel& m_errors;
    QWidget& m_widget;
    QTimer m_pause;
    bool m_isCounting = true;
    quint64 m_iteration = 0; ///< Of the event loop, in which rows came last.
    std::optional<bool> m_isSeen; ///< In that iteration, once it is known.
    int m_errorCount = 0;
    int m_warningCount = 0;
};
