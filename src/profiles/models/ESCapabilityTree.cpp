#include "ESCapabilityTree.h"

#include "LimitKeys.h"
#include "ProfileColumns.h"
#include "ValueNames.h"

namespace models {

namespace {

constexpr int columns = 2;

} // namespace

ESCapabilityTreeItem::ESCapabilityTreeItem(const ProfileNode& node)
    : ESTreeItem(columns)
{
    setOrigin(node.origin);
    setWritten(KeyColumn, node.name);
    setWritten(ValueColumn, node.value);
    for (const ProfileNode& part : node.children)
        children().append(std::make_unique<ESCapabilityTreeItem>(part));
}

ProfileNode ESCapabilityTreeItem::node() const
{
    ProfileNode node{text(KeyColumn), text(ValueColumn), {}, origin()};
    for (int row = 0; row < children().count(); ++row)
        node.children.push_back(static_cast<const ESCapabilityTreeItem*>(children().at(row))->node());
    return node;
}

ESCapabilityTree::ESCapabilityTree(const ProfileData::Capabilities& capabilities, QObject* parent)
    : ProfileTree(columns, parent)
{
    fill(capabilities);
}

void ESCapabilityTree::refresh(const ProfileData::Capabilities& capabilities)
{
    beginAnew();
    fill(capabilities);
    endResetModel();
}

void ESCapabilityTree::fill(const ProfileData::Capabilities& capabilities)
{
    for (const auto& [version, nodes] : capabilities) {
        auto api = std::make_unique<ESCapabilityTreeItem>(columns, version);
        for (const ProfileNode& node : nodes)
            api->children().append(std::make_unique<ESCapabilityTreeItem>(node));
        appendSaved(std::move(api));
    }
}

ProfileData::Capabilities ESCapabilityTree::capabilities() const
{
    ProfileData::Capabilities capabilities;
    for (int row = 0; row < items().count(); ++row) {
        const auto& api = static_cast<const ESTreeItem&>(*items().at(row));
        for (int i = 0; api.version() && i < api.children().count(); ++i) {
            const auto* capability = static_cast<const ESCapabilityTreeItem*>(api.children().at(i));
            capabilities[*api.version()].push_back(capability->node());
        }
    }
    return capabilities;
}

bool ESCapabilityTree::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const bool isNew = index.isValid() && item(index)->data(KeyColumn).toString().isEmpty();
    if (!ProfileTree::setData(index, value, role))
        return false;
    if (isNew && index.column() == KeyColumn && item(index)->parent())
        addParts(index);
    return true;
}

void ESCapabilityTree::addParts(const QModelIndex& capability)
{
    const auto key = findCapability(ESCapabilityKey::XMLName{item(capability)->text(KeyColumn)});
    if (!key || key->children.empty())
        return;
    insertRows(0, static_cast<int>(key->children.size()), capability);
    int row = 0;
    for (const ESCapabilityKey& part : key->children)
        setData(index(row++, KeyColumn, capability), QString::fromStdString(part.xmlName.text));
}

std::unique_ptr<ProfileTreeItem> ESCapabilityTree::makeItem() const
{
    return std::make_unique<ESCapabilityTreeItem>(columns);
}

QString ESCapabilityTree::displayText(const ProfileTreeItem& item, int column) const
{
    const std::string text = item.data(column).toString().toStdString();
    if (column == ValueColumn)
        return QString::fromStdString(value_names::glValue(text));
    if (!item.parent())
        return QString::fromStdString(value_names::esApi(text));
    const bool isPart = item.parent()->parent() != nullptr;
    return QString::fromStdString(isPart ? text : value_names::esCapability(text));
}

QString ESCapabilityTree::readableText(const ProfileTreeItem& item, int column) const
{
    if (column != ValueColumn)
        return displayText(item, column);
    const std::string value = item.data(ValueColumn).toString().trimmed().toStdString();
    // Parts are numbers, also where one is called like a capability.
    const bool isPart = item.parent() && item.parent()->parent();
    return QString::fromStdString(isPart ? value : value_names::glValue(item.text(KeyColumn), value));
}

} // namespace models
