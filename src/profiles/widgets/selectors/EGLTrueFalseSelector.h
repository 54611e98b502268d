#pragma once

#include "EGLEnumSelector.h"

namespace widgets {

/// Yes or no, for attributes that are either.
class EGLTrueFalseSelector : public EGLEnumSelector {
    Q_OBJECT

public:
    EGLTrueFalseSelector(QWidget* parent, const QString& current);
};

} // namespace widgets
