#include "ESExtensionTreeView.h"

#include "ESExtensionTreeItemDelegate.h"
#include "UnusedKeys.h"

#include <QAction>

namespace widgets {

ESExtensionTreeView::ESExtensionTreeView(QWidget* parent)
    : ESTreeView(QStringLiteral("Add API"), QStringLiteral("Add Extension"), parent)
{
    setItemDelegate(new ESExtensionTreeItemDelegate(this));
    connect(
        this, SIGNAL(customContextMenuRequested(const QPoint&)), SLOT(onContextMenuRequested(const QPoint&)));
    connect(addTopAction(), SIGNAL(triggered()), SLOT(addAPITriggered()));
    connect(addChildAction(), SIGNAL(triggered()), SLOT(addExtensionTriggered()));
}

void ESExtensionTreeView::onContextMenuRequested(const QPoint& pos)
{
    showMenu(pos, !unusedAPIs(model()).empty());
}

void ESExtensionTreeView::addExtensionTriggered()
{
    const QModelIndex api = contextTop();
    if (!api.isValid())
        return;
    const QString chosen =
        ask(QStringLiteral("Add Extension"), QStringLiteral("Select an extension"), unusedExtensions(api));
    if (!chosen.isEmpty())
        addRow(api, chosen);
}

} // namespace widgets
