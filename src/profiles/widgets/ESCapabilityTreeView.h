#pragma once

#include "ESTreeView.h"

namespace widgets {

/// The view of the capabilities of each API version.
class ESCapabilityTreeView : public ESTreeView {
    Q_OBJECT

public:
    explicit ESCapabilityTreeView(QWidget* parent = nullptr);

    /// The capabilities of the key table that the API version at the index does not hold.
    static std::set<ESCapabilityKey::XMLName> unusedCapabilities(const QModelIndex& api);

public Q_SLOTS:
    void onContextMenuRequested(const QPoint& pos);
    void addCapabilityTriggered();

private:
    void fillIn(const QModelIndex& capability);
};

} // namespace widgets
