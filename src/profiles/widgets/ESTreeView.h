#pragma once

#include "KeyTables.h"
#include "ProfileTreeView.h"

#include <set>

namespace widgets {

/// A view whose rows at the top are API versions.
class ESTreeView : public ProfileTreeView {
    Q_OBJECT

public:
    /// The APIs for which the model has no row at the top.
    static std::set<esapi::API> unusedAPIs(const QAbstractItemModel* model);

public Q_SLOTS:
    void addAPITriggered();

protected:
    using ProfileTreeView::ProfileTreeView;

    QVariant freeKey() const override;
};

} // namespace widgets
