#pragma once

#include <QWidget>

namespace widgets {

/// Says below an editor why it does not take what was entered.
void showRefusal(QWidget* editor, const QString& reason);

/// Says below a cell why it kept its value, when its editor has been left.
void showRefusalLater(QWidget* viewport, const QRect& cell, const QString& reason);

} // namespace widgets
