#include "UnusedKeys.h"

#include "ExtensionCatalogue.h"
#include "LimitKeys.h"
#include "ProfileColumns.h"

#include <algorithm>

namespace widgets {

QSet<QString> keysBelow(const QAbstractItemModel* model, const QModelIndex& parent)
{
    QSet<QString> keys;
    for (int row = 0; row < model->rowCount(parent); ++row)
        keys += model->index(row, models::KeyColumn, parent).data(Qt::EditRole).toString();
    return keys;
}

std::set<std::int32_t> unusedAttribs(const QSet<QString>& used)
{
    std::set<std::int32_t> unused;
    visitEGLAttribKeys([&](const EGLAttribKey& key) {
        if (!used.contains(QString::number(key.value)))
            unused.insert(key.value);
    });
    return unused;
}

std::set<esapi::API> unusedAPIs(const QAbstractItemModel* model)
{
    const QSet<QString> used = keysBelow(model, {});
    std::set<esapi::API> unused;
    esapi::visitAPIs([&](const esapi::API& api) {
        const bool isUsed = std::any_of(api.versions.begin(), api.versions.end(),
            [&](int version) { return used.contains(QString::number(version)); });
        if (!isUsed)
            unused.insert(api);
    });
    return unused;
}

std::set<ESCapabilityKey::XMLName> unusedCapabilities(const QModelIndex& api)
{
    const QSet<QString> used = keysBelow(api.model(), api);
    std::set<ESCapabilityKey::XMLName> unused;
    visitESCapabilityKeyNodes([&](const ESCapabilityKeyNode& node) {
        if (!used.contains(QString::fromStdString(node.key.xmlName.text)))
            unused.insert(node.key.xmlName);
    });
    const std::optional<gl::EsVersion> version = esapi::versionOf(api.data(Qt::EditRole).toInt());
    if (!version)
        return unused;
    visitLimitKeys([&](const ESCapabilityKey& key) {
        if (key.versions.contains(*version) && !used.contains(QString::fromStdString(key.xmlName.text)))
            unused.insert(key.xmlName);
    });
    return unused;
}

QStringList unusedExtensions(const QModelIndex& api)
{
    const QSet<QString> used = keysBelow(api.model(), api);
    QStringList unused;
    for (std::uint32_t code = 1; code <= catalogue::esExtensionCount; ++code) {
        const QString name = QString::fromLatin1(catalogue::esExtensionName(code, catalogue::Prefix::With));
        if (!used.contains(name))
            unused += name;
    }
    unused.sort();
    return unused;
}

} // namespace widgets
