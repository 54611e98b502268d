#include "EGLTrueFalseSelector.h"

#include "ValueNames.h"

namespace widgets {

EGLTrueFalseSelector::EGLTrueFalseSelector(QWidget* parent, const QString& current)
    : EGLEnumSelector(parent, eglNumbers({"EGL_TRUE", "EGL_FALSE"}), current)
{
}

} // namespace widgets
