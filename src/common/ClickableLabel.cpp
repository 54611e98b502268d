#include "ClickableLabel.h"

#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>

namespace {

/// Tells assistive tools that the label is a link, which they may press.
class AccessibleClickableLabel : public QAccessibleWidget {
public:
    explicit AccessibleClickableLabel(ClickableLabel* label)
        : QAccessibleWidget(label, QAccessible::Link)
        , m_label(*label)
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        const QString given = QAccessibleWidget::text(kind);
        return kind == QAccessible::Name && given.isEmpty() ? m_label.text() : given;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& action) override
    {
        if (action == pressAction())
            Q_EMIT m_label.clicked();
    }

private:
    ClickableLabel& m_label;
};

QAccessibleInterface* makeAccessible(const QString&, QObject* object)
{
    auto* label = qobject_cast<ClickableLabel*>(object);
    return label ? new AccessibleClickableLabel(label) : nullptr;
}

} // namespace

ClickableLabel::ClickableLabel(QWidget* parent)
    : ClickableLabel(QString(), parent)
{
}

ClickableLabel::ClickableLabel(const QString& text, QWidget* parent)
    : QLabel(text, parent)
{
    QAccessible::installFactory(makeAccessible);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setForegroundRole(QPalette::Link);
}

void ClickableLabel::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (!event->isAutoRepeat())
            Q_EMIT clicked();
        break;
    default:
        QLabel::keyPressEvent(event);
    }
}

void ClickableLabel::mousePressEvent(QMouseEvent* event)
{
    m_pressed = event->button() == Qt::LeftButton;
    if (!m_pressed)
        QLabel::mousePressEvent(event);
}

void ClickableLabel::mouseReleaseEvent(QMouseEvent* event)
{
    const bool click = m_pressed && event->button() == Qt::LeftButton;
    m_pressed = false;
    if (!click)
        QLabel::mouseReleaseEvent(event);
    else if (rect().contains(event->position().toPoint()))
        Q_EMIT clicked(); // last, since it may be the label's end
}

void ClickableLabel::paintEvent(QPaintEvent* event)
{
    QLabel::paintEvent(event);
    if (!hasFocus())
        return;
    QPainter painter(this);
    QStyleOptionFocusRect option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}

void ClickableLabel::focusInEvent(QFocusEvent* event)
{
    QLabel::focusInEvent(event);
    update();
}

void ClickableLabel::focusOutEvent(QFocusEvent* event)
{
    QLabel::focusOutEvent(event);
    update();
}
