#include "EGLConfigTreeItemDelegate.h"

#include "EGLConfigIDSelector.h"
#include "EGLSelectors.h"
#include "EglEnumerants.h"
#include "Numbers.h"
#include "ProfileColumns.h"
#include "UnusedKeys.h"

#include <limits>

namespace widgets {

using models::KeyColumn;

namespace {

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

/// The number that an attribute's value stands for, or the name of a bit where the attribute is a mask.
QVariant parsedValue(const std::string& text, const EGLAttribKey& key)
{
    if (const std::optional<std::int32_t> symbol = egl::symbolicValue(text))
        return *symbol;
    if (const std::optional<std::int32_t> number = platform::parseInt32(text))
        return *number;
    if (!key.single && text.ends_with("_BIT") && egl::enumerantValue(text))
        return QString::fromStdString(text);
    return {};
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
    if (index.column() == KeyColumn && level == 0) {
        if (isTaken(index, entry.toInt()))
            return {{},
                tr("There is a config %1 already. Enter a number that no other config has.")
                    .arg(entry.toInt())};
        return {entry.toInt(), {}};
    }
    if (index.column() == KeyColumn)
        return {entry.toInt(), {}};
    const std::optional<EGLAttribKey> key = level == 1 ? attribOf(index) : std::nullopt;
    if (!key)
        return {entry, {}};
    const QVariant value = parsedValue(entry.toString().trimmed().toStdString(), *key);
    if (value.isValid())
        return {value, {}};
    const QString bits = key->single
        ? QString()
        : tr(", or the name of a bit such as %1")
              .arg(QLatin1String(
                  key->displayName.text == "EGL_SURFACE_TYPE" ? "EGL_WINDOW_BIT" : "EGL_OPENGL_ES2_BIT"));
    return {{},
        tr("%1 takes a whole number from %2 to %3, a name such as EGL_DONT_CARE, EGL_NONE, EGL_TRUE or "
           "EGL_FALSE%4.")
            .arg(QString::fromStdString(key->displayName.text))
            .arg(std::numeric_limits<std::int32_t>::min())
            .arg(std::numeric_limits<std::int32_t>::max())
            .arg(bits)};
}

} // namespace widgets
