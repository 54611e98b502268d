#pragma once

#include <QSpinBox>

namespace widgets {

/// The id of a config: any integer, negative ones too.
class EGLConfigIDSelector : public QSpinBox {
    Q_OBJECT

public:
    EGLConfigIDSelector(QWidget* parent, int current);

    /// Whether the id is another than at first.
    bool isChanged() const { return value() != m_first; }

protected:
    /// As the tree shows it, without separators in any locale.
    QString textFromValue(int value) const override;
    /// Leaves the event to the view, which scrolls.
    void wheelEvent(QWheelEvent* event) override;

private:
    int m_first;
};

} // namespace widgets
