#include "NoticeBar.h"

#include "PlainToolTip.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace widgets {

NoticeBar::NoticeBar(const QString& objectName, QWidget* parent)
    : QFrame(parent)
    , m_layout(new QHBoxLayout(this))
    , m_label(new QLabel(this))
{
    setObjectName(objectName);
    m_label->setObjectName(objectName + QStringLiteral("Text"));
    setFrameShape(StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::AlternateBase);
    setForegroundRole(QPalette::Text);
    constexpr int margin = 4;
    m_layout->setContentsMargins(margin, margin, margin, margin);
    m_label->setTextFormat(Qt::PlainText);
    m_label->setWordWrap(true);
    m_layout->addWidget(m_label, 1);
    hide();
}

void NoticeBar::setText(const QString& text, const QString& toolTip)
{
    m_label->setText(text);
    m_label->setToolTip(toolTip.isEmpty() ? QString() : plainToolTip(toolTip));
    setVisible(!text.isEmpty());
}

QPushButton* NoticeBar::addButton(const QString& objectName, const QString& text, const QString& toolTip)
{
    auto* button = new QPushButton(text, this);
    button->setObjectName(objectName);
    button->setToolTip(toolTip);
    m_layout->addWidget(button);
    return button;
}

} // namespace widgets
