#include "ESExtensionTree.h"

#include "ProfileColumns.h"
#include "ValueNames.h"

#include <algorithm>

namespace models {

namespace {

constexpr int columns = 1;

} // namespace

ESExtensionTree::ESExtensionTree(const ProfileData::Extensions& extensions, QObject* parent)
    : ProfileTree(columns, parent)
{
    fill(extensions);
}

void ESExtensionTree::refresh(const ProfileData::Extensions& extensions)
{
    beginAnew();
    fill(extensions);
    endResetModel();
}

void ESExtensionTree::fill(const ProfileData::Extensions& extensions)
{
    for (const auto& [version, names] : extensions) {
        auto api = std::make_unique<ESExtensionTreeItem>(columns, version);
        for (const std::string& name : names) {
            auto extension = std::make_unique<ESExtensionTreeItem>(columns);
            extension->setWritten(KeyColumn, name);
            api->children().append(std::move(extension));
        }
        appendSaved(std::move(api));
    }
}

ProfileData::Extensions ESExtensionTree::extensions() const
{
    ProfileData::Extensions extensions;
    for (int row = 0; row < items().count(); ++row) {
        const auto& api = static_cast<const ESTreeItem&>(*items().at(row));
        if (!api.version())
            continue;
        std::vector<std::string>& names = extensions[*api.version()];
        for (int i = 0; i < api.children().count(); ++i)
            names.push_back(api.children().at(i)->text(KeyColumn));
        std::sort(names.begin(), names.end());
    }
    return extensions;
}

std::unique_ptr<ProfileTreeItem> ESExtensionTree::makeItem() const
{
    return std::make_unique<ESExtensionTreeItem>(columns);
}

QString ESExtensionTree::displayText(const ProfileTreeItem& item, int column) const
{
    const QString text = item.data(column).toString();
    return item.parent() ? text : QString::fromStdString(value_names::esApi(text.toStdString()));
}

} // namespace models
