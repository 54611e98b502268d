#pragma once

#include <QObject>

class QWidget;

/// Lets the wheel change a widget's value only while the widget has the focus, and does not let the wheel
/// give it the focus. A list or number that the mouse happens to be over would change unseen otherwise.
class FocusedWheel : public QObject {
    Q_OBJECT

public:
    /// Belongs to the widget.
    explicit FocusedWheel(QWidget* widget);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};
