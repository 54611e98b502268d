#pragma once

#include "EGLEnumSelector.h"

namespace widgets {

/// What is wrong with a config, for EGL_CONFIG_CAVEAT.
class EGLConfigCaveatSelector : public EGLEnumSelector {
    Q_OBJECT

public:
    EGLConfigCaveatSelector(QWidget* parent, const QString& current);
};

} // namespace widgets
