#include "EGLAttribSelector.h"

namespace widgets {

EGLAttribSelector::EGLAttribSelector(
    QWidget* parent, const QList<std::int32_t>& attribs, const QString& current)
    : NamedValueSelector(parent, decimals(attribs), current)
{
}

} // namespace widgets
