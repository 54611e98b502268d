#pragma once

#include <QFontComboBox>

/// A box of fonts that changes its font when an entry is chosen, or when the typed name is finished by Return
/// or by going elsewhere; not with each key. A name that no font has gives way to the last font.
class FontBox : public QFontComboBox {
    Q_OBJECT

public:
    explicit FontBox(QWidget* parent = nullptr);

private:
    void takeTypedName();
};
