#include "FontBox.h"

#include <QLineEdit>

FontBox::FontBox(QWidget* parent)
    : QFontComboBox(parent)
{
    // The base follows every change of its text.
    disconnect(lineEdit(), &QLineEdit::textChanged, this, nullptr);
    connect(this, &QComboBox::currentIndexChanged, this,
        [this](int index) { Q_EMIT currentTextChanged(itemText(index)); });
    connect(lineEdit(), &QLineEdit::editingFinished, this, &FontBox::takeTypedName);
}

void FontBox::takeTypedName()
{
    const int index = findText(lineEdit()->text().trimmed(), Qt::MatchFixedString);
    if (index >= 0)
        setCurrentIndex(index);
    setEditText(index >= 0 ? itemText(index) : currentFont().family());
}
