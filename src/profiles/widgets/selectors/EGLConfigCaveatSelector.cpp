#include "EGLConfigCaveatSelector.h"

#include "ValueNames.h"

namespace widgets {

EGLConfigCaveatSelector::EGLConfigCaveatSelector(QWidget* parent, const QString& current)
    : EGLEnumSelector(
        parent, eglNumbers({"EGL_NONE", "EGL_SLOW_CONFIG", "EGL_NON_CONFORMANT_CONFIG"}), current)
{
}

} // namespace widgets
