#include "EGLConfigTree.h"

#include "EglEnumerants.h"
#include "KeyTables.h"
#include "ProfileColumns.h"
#include "ValueNames.h"

#include <map>
#include <set>

namespace models {

namespace {

constexpr int columns = 2;

/// Names of the values that all attributes share become their numbers.
QVariant attributeValue(const QVariant& value)
{
    const std::optional<std::int32_t> named = egl::symbolicValue(value.toString().toStdString());
    return named ? QVariant(*named) : numberOrText(value);
}

/// The key of an attribute's row; nothing for one that no table knows, and for other rows.
std::optional<EGLAttribKey> attributeKey(const ProfileTreeItem& item)
{
    EGLAttribKey key;
    const std::optional<int> number = item.parent() ? storedNumber(item.data(KeyColumn)) : std::nullopt;
    return number && findEGLAttribKey(*number, &key) ? std::optional(key) : std::nullopt;
}

/// Whether the element's parts are attributes of their own.
bool isCompound(const std::string& element)
{
    bool found = false;
    visitEGLAttribKeys([&](const EGLAttribKey& key) {
        found = found || (key.xmlPath.size() > 1 && key.xmlPath.front() == element);
    });
    return found;
}

} // namespace

EGLConfigTreeItem::EGLConfigTreeItem()
    : ProfileTreeItem(columns)
{
}

EGLConfigTreeItem::EGLConfigTreeItem(int id, const std::vector<ProfileNode>& attributes)
    : ProfileTreeItem(columns)
{
    setData(KeyColumn, id);
    int element = 0;
    for (const ProfileNode& node : attributes) {
        if (node.children.empty() || !isCompound(node.name)) {
            appendAttribute({node.name}, node, {});
            continue;
        }
        for (const ProfileNode& part : node.children)
            appendAttribute({node.name, part.name}, part, {node.name, element});
        ++element;
    }
}

EGLConfigTreeItem::EGLConfigTreeItem(const ProfileNode& node)
    : ProfileTreeItem(columns)
{
    setOrigin(node.origin);
    setWritten(KeyColumn, node.name);
    setWritten(ValueColumn, node.value, attributeValue(QString::fromStdString(node.value)));
    for (const ProfileNode& part : node.children)
        children().append(std::unique_ptr<EGLConfigTreeItem>(new EGLConfigTreeItem(part)));
}

void EGLConfigTreeItem::appendAttribute(
    const std::deque<std::string>& path, const ProfileNode& node, const Element& element)
{
    auto attribute = std::unique_ptr<EGLConfigTreeItem>(new EGLConfigTreeItem(node));
    attribute->m_element = element;
    EGLAttribKey key;
    if (findEGLAttribKey(path, &key))
        attribute->setData(KeyColumn, key.value);
    else if (path.size() > 1)
        attribute->setWritten(KeyColumn, path.front() + '/' + path.back());
    children().append(std::move(attribute));
}

void EGLConfigTreeItem::copyCells(const ProfileTreeItem& other)
{
    ProfileTreeItem::copyCells(other);
    m_element = static_cast<const EGLConfigTreeItem&>(other).m_element;
}

std::optional<int> EGLConfigTreeItem::id() const
{
    return storedNumber(data(KeyColumn));
}

std::deque<std::string> EGLConfigTreeItem::path() const
{
    if (const std::optional<EGLAttribKey> key = attributeKey(*this))
        return key->xmlPath;
    const std::string name = text(KeyColumn);
    const std::size_t slash = name.find('/');
    if (slash == std::string::npos)
        return {name};
    return {name.substr(0, slash), name.substr(slash + 1)};
}

ProfileNode EGLConfigTreeItem::node(const std::string& name) const
{
    ProfileNode node{name, text(ValueColumn), {}, origin()};
    const std::optional<int> value = storedNumber(data(ValueColumn));
    const std::optional<EGLAttribKey> key = attributeKey(*this);
    if (!written(ValueColumn) && value && key)
        node.value = value_names::eglValue(*key, *value);
    for (int row = 0; row < children().count(); ++row) {
        const auto* part = static_cast<const EGLConfigTreeItem*>(children().at(row));
        node.children.push_back(part->node(part->text(KeyColumn)));
    }
    return node;
}

/// A mask has an element for each bit, and a row may hold several bits.
void EGLConfigTreeItem::appendElements(const ProfileNode& node, std::vector<ProfileNode>* nodes) const
{
    const std::optional<EGLAttribKey> key = attributeKey(*this);
    if (written(ValueColumn) || !key || key->single) {
        nodes->push_back(node);
        return;
    }
    std::size_t begin = 0;
    for (std::size_t end = 0; end != std::string::npos; begin = end + 1) {
        end = node.value.find('|', begin);
        const bool isFirst = begin == 0;
        nodes->push_back(
            {node.name, node.value.substr(begin, end - begin), {}, isFirst ? node.origin : std::nullopt});
    }
}

std::vector<ProfileNode> EGLConfigTreeItem::attributes() const
{
    std::vector<ProfileNode> nodes;
    // Which element a new row joins, by name.
    std::map<std::string, Element> first;
    for (int row = 0; row < children().count(); ++row) {
        const Element& element = static_cast<const EGLConfigTreeItem*>(children().at(row))->m_element;
        first.emplace(element.first, element);
    }
    std::map<Element, std::size_t> places;
    for (int row = 0; row < children().count(); ++row) {
        const auto* attribute = static_cast<const EGLConfigTreeItem*>(children().at(row));
        const std::deque<std::string> path = attribute->path();
        if (path.size() == 1) {
            attribute->appendElements(attribute->node(path.front()), &nodes);
            continue;
        }
        const auto found = first.find(path.front());
        Element element = found == first.end() ? Element(path.front(), -1) : found->second;
        if (attribute->m_element.first == path.front())
            element = attribute->m_element;
        const auto [place, isNew] = places.emplace(element, nodes.size());
        if (isNew)
            nodes.push_back({path.front(), {}, {}});
        nodes[place->second].children.push_back(attribute->node(path.back()));
    }
    return nodes;
}

EGLConfigTree::EGLConfigTree(const ProfileData::Configs& configs, QObject* parent)
    : ProfileTree(columns, parent)
{
    fill(configs);
}

void EGLConfigTree::refresh(const ProfileData::Configs& configs)
{
    beginAnew();
    fill(configs);
    endResetModel();
}

void EGLConfigTree::fill(const ProfileData::Configs& configs)
{
    for (const auto& [id, attributes] : configs)
        appendSaved(std::make_unique<EGLConfigTreeItem>(id, attributes));
}

ProfileData::Configs EGLConfigTree::configs() const
{
    ProfileData::Configs configs;
    for (int row = 0; row < items().count(); ++row) {
        const auto* config = static_cast<const EGLConfigTreeItem*>(items().at(row));
        if (config->id())
            configs.emplace(*config->id(), config->attributes());
    }
    return configs;
}

int EGLConfigTree::freeId() const
{
    std::set<int> taken;
    for (int row = 0; row < items().count(); ++row)
        taken.insert(static_cast<const EGLConfigTreeItem*>(items().at(row))->id().value_or(-1));
    int id = 0;
    while (taken.contains(id))
        ++id;
    return id;
}

std::unique_ptr<ProfileTreeItem> EGLConfigTree::makeItem() const
{
    return std::make_unique<EGLConfigTreeItem>();
}

QString EGLConfigTree::displayText(const ProfileTreeItem& item, int column) const
{
    const QVariant& stored = item.data(column);
    const std::optional<int> number = storedNumber(stored);
    if (column == KeyColumn && !item.parent())
        return number ? tr("Config %1").arg(*number) : stored.toString();
    if (column == ValueColumn && !item.parent())
        return item.children().count() > 0 ? QString() : tr("without attributes it is not kept");
    if (!number)
        return stored.toString();
    const std::string text = stored.toString().toStdString();
    return QString::fromStdString(
        column == ValueColumn ? value_names::eglValue(text) : value_names::eglAttribute(text));
}

QString EGLConfigTree::readableText(const ProfileTreeItem& item, int column) const
{
    const QVariant& stored = item.data(column);
    if (column != ValueColumn || !item.parent() || !storedNumber(stored))
        return displayText(item, column);
    const std::optional<EGLAttribKey> key = attributeKey(item);
    return key ? QString::fromStdString(value_names::eglValue(*key, stored.toInt())) : stored.toString();
}

QVariant EGLConfigTree::storedValue(const ProfileTreeItem& item, int column, const QVariant& value) const
{
    // Keys below attributes are names of elements, whatever they look like.
    const bool isName = column == KeyColumn && item.parent() && item.parent()->parent();
    if (isName)
        return value.toString();
    // Nothing says whether what no table knows goes by names, so it keeps the name that was entered.
    return column == ValueColumn && attributeKey(item) ? attributeValue(value) : numberOrText(value);
}

} // namespace models
