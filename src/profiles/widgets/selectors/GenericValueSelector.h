#pragma once

#include <QComboBox>

namespace widgets {

/// An in-place editor for a value out of a list: the current value, a separator, the choices. The items hold
/// values as they are stored; what the user sees are their names.
///
/// Subclasses that show names override displayText() and install a list delegate that says the same.
class GenericValueSelector : public QComboBox {
    Q_OBJECT

public:
    GenericValueSelector(QWidget* parent, const QStringList& values, const QString& current);

    /// What the user sees for a stored value.
    virtual QString displayText(const QString& value) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    void showPopup() override;

Q_SIGNALS:
    /// The user picked an item of the list, which settles the matter; browsing with keys does not.
    void chosen();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    /// Leaves the event to the view, which scrolls.
    void wheelEvent(QWheelEvent* event) override;

private:
    QStringList namesOfItems() const;

    bool m_handlingKey = false;
};

} // namespace widgets
