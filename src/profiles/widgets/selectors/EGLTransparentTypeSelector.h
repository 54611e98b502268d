#pragma once

#include "EGLEnumSelector.h"

namespace widgets {

/// Kinds of transparency, for EGL_TRANSPARENT_TYPE.
class EGLTransparentTypeSelector : public EGLEnumSelector {
    Q_OBJECT

public:
    EGLTransparentTypeSelector(QWidget* parent, const QString& current);
};

} // namespace widgets
