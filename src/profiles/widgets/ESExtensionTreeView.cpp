#include "ESExtensionTreeView.h"

#include "ESExtensionTreeItemDelegate.h"
#include "ExtensionCatalogue.h"
#include "models/ProfileColumns.h"

#include <QAction>
#include <QSet>

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

QStringList ESExtensionTreeView::unusedExtensions(const QModelIndex& api)
{
    QSet<QString> used;
    for (int row = 0; row < api.model()->rowCount(api); ++row)
        used << api.model()->index(row, models::KeyColumn, api).data(Qt::EditRole).toString();
    QStringList names;
    for (std::uint32_t code = 1; code <= catalogue::esExtensionCount; ++code) {
        const QString name = QString::fromLatin1(catalogue::esExtensionName(code, catalogue::Prefix::With));
        if (!used.contains(name))
            names << name;
    }
    names.sort();
    return names;
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
