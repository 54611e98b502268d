#pragma once

#include "ProfileTreeView.h"

#include <cstdint>
#include <set>

namespace models {
class ProfileTreeItem;
}

namespace widgets {

/// The view of the EGL configs and their attributes.
class EGLConfigTreeView : public ProfileTreeView {
    Q_OBJECT

public:
    explicit EGLConfigTreeView(QWidget* parent = nullptr);

    /// The attributes of the key table that the config does not hold.
    static std::set<std::int32_t> unusedAttribs(models::ProfileTreeItem* config);

public Q_SLOTS:
    void onContextMenuRequested(const QPoint& pos);
    void addConfigTriggered();
    void addAttribTriggered();

protected:
    QVariant freeKey() const override;
};

} // namespace widgets
