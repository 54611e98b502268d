#include "ESCapabilityTreeItemDelegate.h"

#include "ESSelectors.h"
#include "GlEnumerants.h"
#include "ImageFormatSelector.h"
#include "LimitKeys.h"
#include "Numbers.h"
#include "ProfileColumns.h"
#include "UnusedKeys.h"

namespace widgets {

using models::KeyColumn;

namespace {

std::string keyText(const QModelIndex& index)
{
    return index.siblingAtColumn(KeyColumn).data(Qt::EditRole).toString().toStdString();
}

std::set<std::string> partsOf(const ESCapabilityKey& key)
{
    std::set<std::string> parts;
    for (const ESCapabilityKey& part : key.children)
        parts.insert(part.xmlName.text);
    return parts;
}

/// A key that has other parts would not go with those that the row has.
QStringList keysFor(const QModelIndex& row)
{
    const bool isNew = keyText(row).empty();
    std::set<std::string> parts;
    for (int i = 0; i < row.model()->rowCount(row); ++i)
        parts.insert(keyText(row.model()->index(i, KeyColumn, row)));
    QStringList names;
    for (const ESCapabilityKey::XMLName& name : unusedCapabilities(row.parent())) {
        const std::optional<ESCapabilityKey> key = findCapability(name);
        if (isNew || (key && partsOf(*key) == parts))
            names += QString::fromStdString(name.text);
    }
    return names;
}

/// What the value of a row is; nothing where no table knows, so that anything may be entered.
std::optional<ValueKind> valueKindOf(const QModelIndex& index, int level)
{
    const std::string name = keyText(index);
    if (level == 1) {
        const std::optional<ESCapabilityKey> key = findCapability(ESCapabilityKey::XMLName{name});
        return key ? std::optional(valueKind(key->kind)) : std::nullopt;
    }
    const std::optional<ESCapabilityKey> whole =
        level == 2 ? findCapability(ESCapabilityKey::XMLName{keyText(index.parent())}) : std::nullopt;
    return whole && partsOf(*whole).contains(name) ? std::optional(valueKind(whole->kind)) : std::nullopt;
}

/// The number as it is stored; a null text for what is none.
QString parsedValue(const std::string& text, ValueKind kind)
{
    const std::optional<std::int64_t> number = platform::parseInteger(text);
    if (number && gl::isValue(*number))
        return QString::number(*number);
    if (const std::optional<std::uint32_t> hexadecimal = platform::parseHexadecimal(text))
        return QString::number(*hexadecimal);
    if (const std::optional<std::int32_t> value = gl::enumerantValue(text))
        return QString::number(static_cast<std::uint32_t>(*value));
    const std::optional<double> real = kind == ValueKind::Real ? platform::parseReal(text) : std::nullopt;
    return real ? QString::fromStdString(platform::formatReal(*real)) : QString();
}

QWidget* makeValueSelector(QWidget* parent, const QModelIndex& index)
{
    const QString current = index.data(Qt::EditRole).toString();
    const std::string key = keyText(index);
    using Use = ImageFormatSelector::Use;
    if (key == "implementation_color_read_format")
        return new ImageFormatSelector(parent, Use::ReadFormat, current);
    if (key == "implementation_color_read_type")
        return new ImageFormatSelector(parent, Use::ReadType, current);
    if (key == "compressed_texture_format")
        return new ImageFormatSelector(parent, Use::CompressedTexture, current);
    if (key == "shader_binary_format")
        return new ShaderBinaryFormatSelector(parent, current);
    const auto known = findCapability(ESCapabilityKey::XMLName{key});
    return known && known->kind == KeyKind::Boolean ? new ESTrueFalseSelector(parent, current) : nullptr;
}

} // namespace

QWidget* ESCapabilityTreeItemDelegate::makeEditor(QWidget* parent, const QModelIndex& index) const
{
    const int level = depth(index);
    if (level == 0)
        return ESTreeItemDelegate::makeEditor(parent, index);
    if (index.column() == KeyColumn)
        return level == 1 ? new ESCapabilitySelector(parent, keysFor(index), storedText(index)) : nullptr;
    const std::optional<ESCapabilityKey> key =
        level == 1 ? findCapability(ESCapabilityKey::XMLName{keyText(index)}) : std::nullopt;
    // The value of a row with parts is its parts.
    if (index.model()->hasChildren(keyOf(index)) || (key && !key->children.empty()))
        return nullptr;
    QWidget* selector = level == 1 ? makeValueSelector(parent, index) : nullptr;
    return selector ? selector : makeLine(parent, index);
}

ProfileTreeItemDelegate::Outcome ESCapabilityTreeItemDelegate::outcomeOf(
    const QModelIndex& index, const QVariant& entry) const
{
    const int level = depth(index);
    if (level == 0)
        return ESTreeItemDelegate::outcomeOf(index, entry);
    const std::optional<ValueKind> kind =
        index.column() == KeyColumn ? std::nullopt : valueKindOf(index, level);
    if (!kind)
        return {entry, {}};
    const QString value = parsedValue(entry.toString().trimmed().toStdString(), *kind);
    if (!value.isNull())
        return {value, {}};
    const QString name = keyOf(index).data().toString();
    if (kind == ValueKind::Real)
        return {{}, tr("\"%1\" takes a number such as 1 or 0.5.").arg(name)};
    const QString numbers =
        tr("%1 takes a whole number from %2 to %3").arg(name).arg(gl::leastValue).arg(gl::greatestValue);
    if (!hasNames(*kind))
        return {{}, tr("%1, also hexadecimal such as 0x10.").arg(numbers)};
    return {{}, tr("%1 or the name of a GL enumerant such as GL_RGBA.").arg(numbers)};
}

} // namespace widgets
