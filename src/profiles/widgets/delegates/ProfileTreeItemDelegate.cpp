#include "ProfileTreeItemDelegate.h"

#include "EGLConfigIDSelector.h"
#include "GenericValueSelector.h"
#include "PlainToolTip.h"
#include "ProfileColumns.h"
#include "RefusalTip.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QItemEditorFactory>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QToolTip>

#include <algorithm>
#include <limits>

namespace widgets {

namespace {

/// Where an editor keeps its cell, which the event filter needs.
constexpr char cellProperty[] = "cell";

QModelIndex cellOf(const QWidget* editor)
{
    return editor->property(cellProperty).value<QPersistentModelIndex>();
}

/// The views paint entries white on any theme, so texts and arrows must be dark on any theme too.
void useDarkText(QWidget* editor)
{
    QPalette palette = editor->palette();
    for (const QPalette::ColorRole role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(role, Qt::black);
    palette.setColor(QPalette::Button, QColor(0xe6, 0xe6, 0xe6));
    palette.setColor(QPalette::Highlight, QColor(0x1f, 0x5f, 0xa8));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    editor->setPalette(palette);
}

QString accessibleNameFor(const QModelIndex& index)
{
    const QString key = index.siblingAtColumn(models::KeyColumn).data().toString();
    if (index.column() == models::ValueColumn)
        return ProfileTreeItemDelegate::tr("Value of %1").arg(key);
    return key.isEmpty() ? ProfileTreeItemDelegate::tr("Key")
                         : ProfileTreeItemDelegate::tr("Key, now %1").arg(key);
}

} // namespace

QWidget* ProfileTreeItemDelegate::createEditor(
    QWidget* parent, const QStyleOptionViewItem& /*option*/, const QModelIndex& index) const
{
    QWidget* editor = makeEditor(parent, index);
    if (!editor)
        return nullptr;
    editor->setProperty(cellProperty, QVariant::fromValue(QPersistentModelIndex(index)));
    editor->setAccessibleName(accessibleNameFor(index));
    if (auto* selector = qobject_cast<GenericValueSelector*>(editor)) {
        connect(selector, &GenericValueSelector::chosen, this, &ProfileTreeItemDelegate::commitAndClose);
        return editor;
    }
    useDarkText(editor);
    if (auto* line = qobject_cast<QLineEdit*>(editor))
        connect(line, &QLineEdit::textEdited, line, [] { QToolTip::hideText(); });
    if (auto* id = qobject_cast<EGLConfigIDSelector*>(editor))
        connect(id, &QSpinBox::textChanged, id, [] { QToolTip::hideText(); });
    return editor;
}

void ProfileTreeItemDelegate::setEditorData(QWidget* /*editor*/, const QModelIndex& /*index*/) const
{
}

void ProfileTreeItemDelegate::setModelData(
    QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const
{
    const std::optional<Outcome> outcome = outcomeOfEditor(editor, index);
    if (!outcome)
        return;
    QString refusal = outcome->refusal;
    if (refusal.isEmpty() && outcome->value.toString() != storedText(index)
        && !model->setData(index, outcome->value))
        refusal = tr("Another row has this value already, so the old one was kept.");
    if (!refusal.isEmpty() && editor->parentWidget())
        showRefusalLater(editor->parentWidget(), editor->geometry(), refusal);
}

void ProfileTreeItemDelegate::updateEditorGeometry(
    QWidget* editor, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QStyledItemDelegate::updateEditorGeometry(editor, option, index);
    if (!editor->parentWidget())
        return;
    const QRect all = editor->parentWidget()->rect();
    // Of a cell that reaches out of the view only what is in sight counts.
    const auto inSight = [all](QRect rect) {
        rect.setRight(std::max(rect.left(), std::min(rect.right(), all.right())));
        return rect;
    };
    // Editors need more room than their cell may have, but should not hide the key beside it.
    constexpr int least = 150;
    const bool isLine = qobject_cast<QLineEdit*>(editor) != nullptr;
    QRect place = inSight(isLine ? option.rect : editor->geometry());
    const int middle = place.center().y();
    const QSize room(std::max(all.right() + 1 - place.left(), least), all.height());
    const QSize wanted = isLine ? QSize(least, place.height()) : editor->sizeHint();
    place.setSize(place.size().expandedTo(wanted.boundedTo(room)).boundedTo(all.size()));
    place.moveTop(middle - place.height() / 2);
    place.moveLeft(std::max(0, std::min(place.left(), all.right() + 1 - place.width())));
    editor->setGeometry(place);
}

bool ProfileTreeItemDelegate::helpEvent(
    QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option, const QModelIndex& index)
{
    QStringList lines;
    const QVariant explained = index.data(Qt::ToolTipRole);
    QStyleOptionViewItem shown = option;
    initStyleOption(&shown, index);
    if (explained.isValid())
        lines << explained.toString();
    else if (option.rect.width() < sizeHint(option, index).width())
        lines << shown.text;
    if (index.data(models::UnsavedRole).toBool())
        lines << index.data(Qt::AccessibleDescriptionRole).toString();
    if (event->type() != QEvent::ToolTip || lines.isEmpty())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    QToolTip::showText(event->globalPos(), plainToolTip(lines.join(QLatin1Char('\n'))), view);
    return true;
}

QSize ProfileTreeItemDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    // Room for the frame of an editor.
    constexpr int frame = 4;
    return QStyledItemDelegate::sizeHint(option, index) + QSize(frame, frame);
}

void ProfileTreeItemDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const QVariant readable = index.data(Qt::AccessibleTextRole);
    if (readable.isValid())
        option->text = displayText(readable, option->locale);
    if (index.column() == models::KeyColumn && index.data(models::UnsavedRole).toBool()) {
        option->font.setBold(true);
        option->fontMetrics = QFontMetrics(option->font);
    }
}

bool ProfileTreeItemDelegate::eventFilter(QObject* object, QEvent* event)
{
    auto* editor = qobject_cast<QWidget*>(object);
    if (editor && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        const QModelIndex index = cellOf(editor);
        if ((key == Qt::Key_Return || key == Qt::Key_Enter) && index.isValid()) {
            const std::optional<Outcome> outcome = outcomeOfEditor(editor, index);
            if (outcome && !outcome->refusal.isEmpty()) {
                showRefusal(editor, outcome->refusal);
                return true;
            }
        }
    }
    return QStyledItemDelegate::eventFilter(object, event);
}

bool ProfileTreeItemDelegate::refuses(QWidget* editor) const
{
    const QModelIndex index = cellOf(editor);
    const std::optional<Outcome> outcome =
        index.isValid() ? outcomeOfEditor(editor, index) : std::optional<Outcome>();
    if (!outcome || outcome->refusal.isEmpty())
        return false;
    showRefusalLater(editor->parentWidget(), editor->geometry(), outcome->refusal);
    return true;
}

std::optional<ProfileTreeItemDelegate::Outcome> ProfileTreeItemDelegate::outcomeOfEditor(
    QWidget* editor, const QModelIndex& index) const
{
    if (const auto* selector = qobject_cast<const GenericValueSelector*>(editor))
        return selector->currentIndex() > 0 ? std::optional(outcomeOf(index, selector->currentText()))
                                            : std::nullopt;
    if (const auto* id = qobject_cast<const EGLConfigIDSelector*>(editor))
        return id->isChanged() ? std::optional(outcomeOf(index, id->cleanText())) : std::nullopt;
    const auto* line = qobject_cast<const QLineEdit*>(editor);
    if (!line || !line->isModified() || line->text() == storedText(index))
        return std::nullopt;
    return outcomeOf(index, line->text());
}

void ProfileTreeItemDelegate::commitAndClose()
{
    auto* editor = qobject_cast<QWidget*>(sender());
    Q_EMIT commitData(editor);
    Q_EMIT closeEditor(editor);
}

QWidget* ProfileTreeItemDelegate::makeLine(QWidget* parent, const QModelIndex& index)
{
    // This one grows with its text.
    QWidget* editor = QItemEditorFactory::defaultFactory()->createEditor(QMetaType::QString, parent);
    if (auto* line = qobject_cast<QLineEdit*>(editor)) {
        // The usual limit would cut off a long text.
        line->setMaxLength(std::numeric_limits<int>::max());
        // It would take the width that it has now for its least, and shrink to that when something is
        // entered.
        const QSignalBlocker blocker(line);
        line->setText(storedText(index));
    }
    return editor;
}

int ProfileTreeItemDelegate::depth(const QModelIndex& index)
{
    int depth = 0;
    for (QModelIndex up = index.parent(); up.isValid(); up = up.parent())
        ++depth;
    return depth;
}

QString ProfileTreeItemDelegate::storedText(const QModelIndex& index)
{
    return index.data(Qt::EditRole).toString();
}

QModelIndex ProfileTreeItemDelegate::keyOf(const QModelIndex& index)
{
    return index.siblingAtColumn(models::KeyColumn);
}

} // namespace widgets
