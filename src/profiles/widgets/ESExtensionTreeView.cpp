#include "ESExtensionTreeView.h"

#include "ESExtensionTreeItemDelegate.h"
#include "UnusedKeys.h"

#include <QAction>
#include <QRegularExpression>

namespace widgets {

ESExtensionTreeView::ESExtensionTreeView(QWidget* parent)
    : ESTreeView(tr("Add API"), tr("Add Extension"), parent)
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
    const QSet<QString> listed = keysBelow(model(), api);
    const auto refusalFor = [&listed](const QString& entry) {
        static const QRegularExpression word(QStringLiteral("^[A-Za-z0-9_]+$"));
        if (!word.match(entry.trimmed()).hasMatch())
            return tr("Enter the name of an extension, such as GL_OES_depth24.");
        return listed.contains(entry.trimmed())
            ? tr("%1 is there already. Choose another one.").arg(entry.trimmed())
            : QString();
    };
    const QString chosen =
        askForAny(tr("Add Extension"), tr("Select an extension"), unusedExtensions(api), refusalFor);
    if (!chosen.isEmpty())
        addRow(api, chosen);
}

} // namespace widgets
