#pragma once

#include <QMessageBox>

/// A message box that shows its texts as they are, whatever they look like: names of files and what parsers
/// say may resemble markup.
class PlainMessageBox : public QMessageBox {
    Q_OBJECT

public:
    /// The details stand below the text, in full. One OK button unless told otherwise.
    PlainMessageBox(Icon icon, const QString& title, const QString& text, const QString& details,
        QWidget* parent, StandardButtons buttons = Ok);
};
