#pragma once

#include <QDialog>

/// A pop-up with the whole text of one cell, read-only. A click outside or Escape closes it, and it deletes
/// itself.
class CellContentsDialog : public QDialog {
    Q_OBJECT

public:
    CellContentsDialog(const QString& text, QWidget* parent);

    /// Shows the dialog with its top-left corner at a global position, moved where it would leave the screen.
    void showAt(const QPoint& position);

private:
    QSize sizeFor(const QString& text, const QSize& available) const;

    QString m_text;
};
