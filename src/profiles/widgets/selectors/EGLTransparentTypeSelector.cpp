#include "EGLTransparentTypeSelector.h"

#include "ValueNames.h"

namespace widgets {

EGLTransparentTypeSelector::EGLTransparentTypeSelector(QWidget* parent, const QString& current)
    : EGLEnumSelector(parent, eglNumbers({"EGL_NONE", "EGL_TRANSPARENT_RGB"}), current)
{
}

} // namespace widgets
