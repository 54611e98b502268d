#include "ESCapabilityTree.h"

#include "GlEnumerants.h"
#include "KeyTables.h"
#include "Numbers.h"
#include "ProfileColumns.h"

#include <limits>

namespace models {

namespace {

constexpr int columns = 2;

QString keyName(const QString& element)
{
    ESCapabilityKeyNode node;
    if (findKeyNode(ESCapabilityKey::XMLName{element.toStdString()}, &node))
        return QString::fromStdString(node.key.displayName.text);
    return element;
}

/// The name of the enumerant whose number the text is, else the text.
QString valueName(const QString& text)
{
    const std::optional<std::int64_t> number = platform::parseInteger(text.toStdString());
    constexpr std::int64_t least = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t most = std::numeric_limits<std::uint32_t>::max();
    if (!number || *number < least || *number > most)
        return text;
    const QString name = QString::fromLatin1(gl::enumerantName(static_cast<std::int32_t>(*number)));
    return name.isEmpty() ? text : name;
}

} // namespace

ESCapabilityTreeItem::ESCapabilityTreeItem(const ProfileNode& node)
    : ESTreeItem(columns)
{
    setWritten(KeyColumn, node.name);
    setWritten(ValueColumn, node.value);
    for (const ProfileNode& part : node.children)
        children().append(std::make_unique<ESCapabilityTreeItem>(part));
}

ProfileNode ESCapabilityTreeItem::node() const
{
    ProfileNode node{text(KeyColumn), text(ValueColumn), {}};
    for (int row = 0; row < children().count(); ++row)
        node.children.push_back(static_cast<const ESCapabilityTreeItem*>(children().at(row))->node());
    return node;
}

ESCapabilityTree::ESCapabilityTree(const ProfileData::Capabilities& capabilities, QObject* parent)
    : ProfileTree(columns, parent)
{
    for (const auto& [version, nodes] : capabilities) {
        auto api = std::make_unique<ESCapabilityTreeItem>(columns, version);
        for (const ProfileNode& node : nodes)
            api->children().append(std::make_unique<ESCapabilityTreeItem>(node));
        topItems().append(std::move(api));
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
    ESCapabilityKeyNode node;
    const std::string name = item(capability)->text(KeyColumn);
    if (!findKeyNode(ESCapabilityKey::XMLName{name}, &node) || node.children.empty())
        return;
    insertRows(0, static_cast<int>(node.children.size()), capability);
    int row = 0;
    for (const ESCapabilityKeyNode& part : node.children)
        setData(index(row++, KeyColumn, capability), QString::fromStdString(part.key.xmlName.text));
}

std::unique_ptr<ProfileTreeItem> ESCapabilityTree::makeItem() const
{
    return std::make_unique<ESCapabilityTreeItem>(columns);
}

QString ESCapabilityTree::displayText(const ProfileTreeItem& item, int column) const
{
    const QString text = item.data(column).toString();
    if (column == ValueColumn)
        return valueName(text);
    if (!item.parent())
        return ESTreeItem::versionName(item.data(column));
    const bool isPart = item.parent()->parent() != nullptr;
    return isPart ? text : keyName(text);
}

} // namespace models
