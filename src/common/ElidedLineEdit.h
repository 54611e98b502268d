#pragma once

#include <QLineEdit>

/// A line edit that shows the end of a text without room as an ellipsis, with all of it in the tool tip,
/// until it is entered.
class ElidedLineEdit : public QLineEdit {
    Q_OBJECT

public:
    using QLineEdit::QLineEdit;

    /// What is painted while the edit does not have the focus.
    QString elidedText() const;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QRect textRect() const;
};
