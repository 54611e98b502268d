#pragma once

#include "ESTreeView.h"

namespace widgets {

/// The view of the extensions of each API version.
class ESExtensionTreeView : public ESTreeView {
    Q_OBJECT

public:
    explicit ESExtensionTreeView(QWidget* parent = nullptr);

public Q_SLOTS:
    void onContextMenuRequested(const QPoint& pos);
    void addExtensionTriggered();
};

} // namespace widgets
