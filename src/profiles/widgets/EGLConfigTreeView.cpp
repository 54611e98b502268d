#include "EGLConfigTreeView.h"

#include "EGLConfigTreeItemDelegate.h"
#include "KeyTables.h"
#include "NewRowValues.h"
#include "ProfileColumns.h"
#include "UnusedKeys.h"
#include "models/EGLConfigTree.h"

#include <QAction>

namespace widgets {

EGLConfigTreeView::EGLConfigTreeView(QWidget* parent)
    : ProfileTreeView(tr("Add Config"), tr("Add Attribute"), parent)
{
    setItemDelegate(new EGLConfigTreeItemDelegate(this));
    connect(
        this, SIGNAL(customContextMenuRequested(const QPoint&)), SLOT(onContextMenuRequested(const QPoint&)));
    connect(addTopAction(), SIGNAL(triggered()), SLOT(addConfigTriggered()));
    connect(addChildAction(), SIGNAL(triggered()), SLOT(addAttribTriggered()));
}

std::set<std::int32_t> EGLConfigTreeView::unusedAttribs(models::ProfileTreeItem* config)
{
    QSet<QString> used;
    for (int row = 0; row < config->children().count(); ++row)
        used += config->children().at(row)->data(models::KeyColumn).toString();
    return widgets::unusedAttribs(used);
}

void EGLConfigTreeView::onContextMenuRequested(const QPoint& pos)
{
    showMenu(pos, model() != nullptr);
}

void EGLConfigTreeView::addConfigTriggered()
{
    if (model())
        addRow(model()->rowCount(), {}, freeKey());
}

QVariant EGLConfigTreeView::freeKey() const
{
    const auto* configs = qobject_cast<models::EGLConfigTree*>(model());
    return configs ? configs->freeId() : QVariant();
}

void EGLConfigTreeView::addAttribTriggered()
{
    const QModelIndex config = contextTop();
    if (!config.isValid())
        return;
    QStringList names;
    EGLAttribKey key;
    for (const std::int32_t attribute : unusedAttribs(models::ProfileTree::item(config))) {
        if (findEGLAttribKey(attribute, &key))
            names << QString::fromStdString(key.displayName.text);
    }
    // A mask has a row for each bit.
    visitEGLAttribKeys([&names](const EGLAttribKey& attribute) {
        const QString name = QString::fromStdString(attribute.displayName.text);
        if (attribute.kind == KeyKind::Mask && !names.contains(name))
            names << name;
    });
    const QString chosen = ask(tr("Add Attribute"), tr("Select an attribute"), names);
    if (!findEGLAttribKey(EGLAttribKey::DisplayName{chosen.toStdString()}, &key))
        return;
    const QModelIndex value = addRow(config, key.value).siblingAtColumn(models::ValueColumn);
    if (!value.isValid())
        return;
    model()->setData(value, new_values::forAttribute(key.value));
    setCurrentIndex(value);
    edit(value);
}

} // namespace widgets
