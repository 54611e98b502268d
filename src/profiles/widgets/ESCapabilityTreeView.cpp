#include "ESCapabilityTreeView.h"

#include "ESCapabilityTreeItemDelegate.h"
#include "LimitKeys.h"
#include "NewRowValues.h"
#include "ProfileColumns.h"
#include "UnusedKeys.h"

#include <QAction>
#include <QRegularExpression>

namespace widgets {

namespace {

/// The element for a capability that is called by either of its names; empty for what cannot be an element.
/// Elements that no table knows are called like the others.
QString elementOf(const QString& entry)
{
    static const QRegularExpression enumerant(QStringLiteral("^GL_([A-Z][A-Z0-9_]*)$"));
    static const QRegularExpression element(QStringLiteral("^[A-Za-z_][A-Za-z0-9_.-]*$"));
    const QString name = entry.trimmed();
    if (const auto key = findCapability(ESCapabilityKey::DisplayName{name.toStdString()}))
        return QString::fromStdString(key->xmlName.text);
    const QRegularExpressionMatch match = enumerant.match(name);
    if (match.hasMatch())
        return match.captured(1).toLower();
    return element.match(name).hasMatch() ? name : QString();
}

QString refusalFor(const QModelIndex& api, const QString& entry)
{
    const QString element = elementOf(entry);
    // That one would be read as an extension.
    if (element.isEmpty() || element == QLatin1String("extension"))
        return ESCapabilityTreeView::tr("Enter the name of a limit, such as GL_MAX_SAMPLES or max_samples.");
    const auto key = findCapability(ESCapabilityKey::XMLName{element.toStdString()});
    if (key && key->kind != KeyKind::List && keysBelow(api.model(), api).contains(element))
        return ESCapabilityTreeView::tr("%1 is there already. Choose another one.").arg(entry.trimmed());
    return {};
}

} // namespace

ESCapabilityTreeView::ESCapabilityTreeView(QWidget* parent)
    : ESTreeView(tr("Add API"), tr("Add Capability"), parent)
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
    for (const ESCapabilityKey::XMLName& name : unusedCapabilities(api)) {
        if (const auto key = findCapability(name))
            names << QString::fromStdString(key->displayName.text);
    }
    // Another value of a list that is there already.
    for (const QString& element : keysBelow(model(), api)) {
        const auto key = findCapability(ESCapabilityKey::XMLName{element.toStdString()});
        if (key && key->kind == KeyKind::List)
            names << QString::fromStdString(key->displayName.text);
    }
    const QString chosen = askForAny(tr("Add Capability"), tr("Select a capability"), names,
        [&api](const QString& name) { return refusalFor(api, name); });
    if (!chosen.isEmpty())
        fillIn(addRow(api, elementOf(chosen)));
}

/// Gives a new capability values to start from and lets the user change the first of them.
void ESCapabilityTreeView::fillIn(const QModelIndex& capability)
{
    const std::optional<gl::EsVersion> version =
        esapi::versionOf(capability.parent().data(Qt::EditRole).toInt());
    const QString value = new_values::forCapability(
        capability.data(Qt::EditRole).toString(), version.value_or(gl::EsVersion::Es20));
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
