#include "EGLSelectors.h"

#include "SelectorValues.h"

namespace widgets {

EGLAttribSelector::EGLAttribSelector(
    QWidget* parent, const QList<std::int32_t>& attribs, const QString& current)
    : NamedValueSelector(parent, decimals(attribs), current)
{
}

EGLEnumSelector::EGLEnumSelector(QWidget* parent, const QList<std::int32_t>& values, std::int32_t current)
    : EGLEnumSelector(parent, values, QString::number(current))
{
}

EGLEnumSelector::EGLEnumSelector(QWidget* parent, const QList<std::int32_t>& values, const QString& current)
    : NamedValueSelector(parent, decimals(values), current)
{
}

EGLConfigCaveatSelector::EGLConfigCaveatSelector(QWidget* parent, const QString& current)
    : EGLEnumSelector(
        parent, eglNumbers({"EGL_NONE", "EGL_SLOW_CONFIG", "EGL_NON_CONFORMANT_CONFIG"}), current)
{
}

EGLTransparentTypeSelector::EGLTransparentTypeSelector(QWidget* parent, const QString& current)
    : EGLEnumSelector(parent, eglNumbers({"EGL_NONE", "EGL_TRANSPARENT_RGB"}), current)
{
}

EGLTrueFalseSelector::EGLTrueFalseSelector(QWidget* parent, const QString& current)
    : EGLEnumSelector(parent, eglNumbers({"EGL_TRUE", "EGL_FALSE"}), current)
{
}

} // namespace widgets
