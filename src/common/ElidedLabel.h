#pragma once

#include <QLabel>

/// A line of plain text that ends in an ellipsis where it has no room, and asks for no room of its own.
class ElidedLabel : public QLabel {
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};
