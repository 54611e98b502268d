#pragma once

#include "GenericValueSelector.h"

namespace widgets {

/// Names of OpenGL ES extensions, with "GL_".
class ESExtensionSelector : public GenericValueSelector {
    Q_OBJECT

public:
    ESExtensionSelector(QWidget* parent, const QStringList& names, const QString& current);
};

} // namespace widgets
