#include "EGLConfigTreeItemDelegate.h"

#include "EGLConfigIDSelector.h"
#include "EGLSelectors.h"
#include "EglEnumerants.h"
#include "Numbers.h"
#include "ProfileColumns.h"
#include "UnusedKeys.h"

#include <algorithm>
#include <limits>

namespace widgets {

using models::KeyColumn;

namespace {

constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t greatest = std::numeric_limits<std::int32_t>::max();

/// The attribute of a value's row; nothing for one that no table knows.
std::optional<EGLAttribKey> attribOf(const QModelIndex& index)
{
    bool isNumber = false;
    const int attrib = index.siblingAtColumn(KeyColumn).data(Qt::EditRole).toInt(&isNumber);
    EGLAttribKey key;
    return isNumber && findEGLAttribKey(attrib, &key) ? std::optional(key) : std::nullopt;
}

bool isTaken(const QModelIndex& config, int id)
{
    const QAbstractItemModel* model = config.model();
    for (int row = 0; row < model->rowCount(); ++row) {
        if (row != config.row() && model->index(row, KeyColumn).data(Qt::EditRole) == id)
            return true;
    }
    return false;
}

QWidget* makeValueSelector(QWidget* parent, const QModelIndex& index, const EGLAttribKey& key)
{
    const QString current = index.data(Qt::EditRole).toString();
    const std::string& name = key.displayName.text;
    if (name == "EGL_CONFIG_CAVEAT")
        return new EGLConfigCaveatSelector(parent, current);
    if (name == "EGL_TRANSPARENT_TYPE")
        return new EGLTransparentTypeSelector(parent, current);
    // Being conformant is a mask by its meaning; here it is either or.
    if (name == "EGL_BIND_TO_TEXTURE_RGB" || name == "EGL_BIND_TO_TEXTURE_RGBA" || name == "EGL_CONFORMANT")
        return new EGLTrueFalseSelector(parent, current);
    return nullptr;
}

/// The bits of a mask by their names, joined by "|"; a null text for anything else.
QString bitsIn(const QString& text, const EGLAttribKey& key)
{
    const std::span<const std::string_view> known = egl::bitNames(key.displayName.text);
    QStringList bits;
    for (const QString& bit : text.split(QLatin1Char('|'))) {
        bits += bit.trimmed();
        if (std::find(known.begin(), known.end(), bits.last().toStdString()) == known.end())
            return {};
    }
    bits.removeDuplicates();
    return bits.join(QLatin1Char('|'));
}

/// The number that an attribute's value stands for, or the names of the bits where the attribute is a mask.
QVariant parsedValue(const QString& entry, const EGLAttribKey& key)
{
    const std::string text = entry.trimmed().toStdString();
    if (const std::optional<std::int32_t> symbol = egl::symbolicValue(text))
        return *symbol;
    if (const std::optional<std::int32_t> number = platform::parseInt32(text))
        return *number;
    // Of what has names all bits count, the one for the sign too.
    const std::optional<std::uint32_t> hexadecimal = platform::parseHexadecimal(text);
    if (hexadecimal && (hasNames(valueKind(key.kind)) || *hexadecimal <= std::uint32_t(greatest)))
        return static_cast<std::int32_t>(*hexadecimal);
    const QString bits = key.single ? QString() : bitsIn(entry, key);
    return bits.isNull() ? QVariant() : bits;
}

QString refusalFor(const EGLAttribKey& key)
{
    const QString name = QString::fromStdString(key.displayName.text);
    if (!key.single)
        return EGLConfigTreeItemDelegate::tr(
            "%1 takes the names of bits such as %2, or their sum as a number.")
            .arg(name,
                key.displayName.text == "EGL_SURFACE_TYPE"
                    ? QStringLiteral("EGL_WINDOW_BIT|EGL_PBUFFER_BIT")
                    : QStringLiteral("EGL_OPENGL_ES_BIT|EGL_OPENGL_ES2_BIT"));
    const QString numbers = EGLConfigTreeItemDelegate::tr("%1 takes a whole number from %2 to %3")
                                .arg(name)
                                .arg(least)
                                .arg(greatest);
    if (!hasNames(valueKind(key.kind)))
        return EGLConfigTreeItemDelegate::tr("%1, also hexadecimal such as 0x10.").arg(numbers);
    const QString names =
        key.kind == KeyKind::Boolean ? QStringLiteral("EGL_TRUE") : QStringLiteral("EGL_NONE");
    return EGLConfigTreeItemDelegate::tr("%1 or a name such as %2.").arg(numbers, names);
}

} // namespace

QWidget* EGLConfigTreeItemDelegate::makeEditor(QWidget* parent, const QModelIndex& index) const
{
    const int level = depth(index);
    if (index.column() != KeyColumn) {
        // The value of a row with parts is its parts.
        if (level == 0 || index.model()->hasChildren(keyOf(index)))
            return nullptr;
        const std::optional<EGLAttribKey> key = level == 1 ? attribOf(index) : std::nullopt;
        QWidget* selector = key ? makeValueSelector(parent, index, *key) : nullptr;
        return selector ? selector : makeLine(parent, index);
    }
    if (level == 0)
        return new EGLConfigIDSelector(parent, index.data(Qt::EditRole).toInt());
    if (level > 1)
        return nullptr;
    const std::set<std::int32_t> unused = unusedAttribs(keysBelow(index.model(), index.parent()));
    return new EGLAttribSelector(parent, {unused.begin(), unused.end()}, storedText(index));
}

ProfileTreeItemDelegate::Outcome EGLConfigTreeItemDelegate::outcomeOf(
    const QModelIndex& index, const QVariant& entry) const
{
    const int level = depth(index);
    if (index.column() == KeyColumn && level == 0)
        return outcomeOfId(index, entry.toString());
    if (index.column() == KeyColumn)
        return {entry.toInt(), {}};
    const std::optional<EGLAttribKey> key = level == 1 ? attribOf(index) : std::nullopt;
    if (!key)
        return {entry, {}};
    const QVariant value = parsedValue(entry.toString(), *key);
    return value.isValid() ? Outcome{value, {}} : Outcome{{}, refusalFor(*key)};
}

ProfileTreeItemDelegate::Outcome EGLConfigTreeItemDelegate::outcomeOfId(
    const QModelIndex& config, const QString& entry)
{
    const std::optional<int> id = EGLConfigIDSelector::parsedId(entry);
    if (!id)
        return {{}, tr("A config has a whole number from %1 to %2.").arg(least).arg(greatest)};
    if (isTaken(config, *id))
        return {{}, tr("There is a config %1 already. Enter a number that no other config has.").arg(*id)};
    return {*id, {}};
}

} // namespace widgets
