#include "EGLConfigIDSelector.h"

#include <QWheelEvent>

#include <limits>

namespace widgets {

EGLConfigIDSelector::EGLConfigIDSelector(QWidget* parent, int current)
    : QSpinBox(parent)
    , m_first(current)
{
    setLocale(QLocale::c());
    setRange(std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    setPrefix(tr("Config "));
    setValue(current);
}

QString EGLConfigIDSelector::textFromValue(int value) const
{
    return QString::number(value);
}

void EGLConfigIDSelector::wheelEvent(QWheelEvent* event)
{
    event->ignore();
}

} // namespace widgets
