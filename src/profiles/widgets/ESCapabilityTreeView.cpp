#include "ESCapabilityTreeView.h"

#include "ESCapabilityTreeItemDelegate.h"
#include "NewRowValues.h"
#include "ProfileColumns.h"
#include "UnusedKeys.h"

#include <QAction>

namespace widgets {

ESCapabilityTreeView::ESCapabilityTreeView(QWidget* parent)
    : ESTreeView(QStringLiteral("Add API"), QStringLiteral("Add Capability"), parent)
{
    setItemDelegate(new ESCapabilityTreeItemDelegate(this));
    connect(
        this, SIGNAL(customContextMenuRequested(const QPoint&)), SLOT(onContextMenuRequested(const QPoint&)));
    connect(addTopAction(), SIGNAL(triggered()), SLOT(addAPITriggered()));
    connect(addChildAction(), SIGNAL(triggered()), SLOT(addCapabilityTriggered()));
}

std::set<ESCapabilityKey::XMLName> ESCapabilityTreeView::unusedCapabilities(const QModelIndex& api)
{
    return widgets::unusedCapabilities(api);
}

void ESCapabilityTreeView::onContextMenuRequested(const QPoint& pos)
{
    showMenu(pos, !unusedAPIs(model()).empty());
}

void ESCapabilityTreeView::addCapabilityTriggered()
{
    const QModelIndex api = contextTop();
    if (!api.isValid())
        return;
    QStringList names;
    ESCapabilityKeyNode node;
    for (const ESCapabilityKey::XMLName& name : unusedCapabilities(api)) {
        if (findKeyNode(name, &node))
            names << QString::fromStdString(node.key.displayName.text);
    }
    const QString chosen =
        ask(QStringLiteral("Add Capability"), QStringLiteral("Select a capability"), names);
    if (findKeyNode(ESCapabilityKey::DisplayName{chosen.toStdString()}, &node))
        fillIn(addRow(api, QString::fromStdString(node.key.xmlName.text)));
}

/// Gives a new capability values to start from and lets the user change the first of them.
void ESCapabilityTreeView::fillIn(const QModelIndex& capability)
{
    const QString value = new_values::forCapability(capability.data(Qt::EditRole).toString());
    const int parts = model()->rowCount(capability);
    for (int row = 0; row < parts; ++row)
        model()->setData(model()->index(row, models::ValueColumn, capability), value);
    QModelIndex first = capability.siblingAtColumn(models::ValueColumn);
    if (parts > 0) {
        expand(capability);
        first = model()->index(0, models::ValueColumn, capability);
    } else {
        model()->setData(first, value);
    }
    setCurrentIndex(first);
    edit(first);
}

} // namespace widgets
