#include "PlainMessageBox.h"

#include <QLabel>

PlainMessageBox::PlainMessageBox(Icon icon, const QString& title, const QString& text, const QString& details,
    QWidget* parent, StandardButtons buttons)
    : QMessageBox(icon, title, text, buttons, parent)
{
    setInformativeText(details);
    for (QLabel* label : findChildren<QLabel*>())
        label->setTextFormat(Qt::PlainText);
}
