#pragma once

#include <QStyledItemDelegate>

namespace widgets {

/// Paints the cells of a profile tree and edits them in place. What cannot be stored is refused: Enter leaves
/// the editor open, leaving it keeps the old value, and either way a tool tip says why. An editor that is
/// left as it was found writes nothing.
///
/// Knows the model by its columns and roles only. The keys of rows that are not saved are bold.
class ProfileTreeItemDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget* createEditor(
        QWidget* parent, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    /// Does nothing: an editor is made with its value, and a change from elsewhere must not overwrite what is
    /// being entered.
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
    void updateEditorGeometry(
        QWidget* editor, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    /// Where a text has no room and no other tool tip, it is the tool tip itself. A row that is not saved
    /// says so as well.
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
        const QModelIndex& index) override;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    /// Whether what was entered in an editor cannot be stored, which a tool tip says then.
    bool refuses(QWidget* editor) const;

protected:
    /// What to store for an entry, or why it is refused.
    struct Outcome {
        QVariant value;
        QString refusal;
    };

    bool eventFilter(QObject* object, QEvent* event) override;
    /// Paints what screen readers say: Qt::DisplayRole names numbers whatever their key is.
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

    /// An editor that shows the cell's value; null for a cell that is not edited.
    virtual QWidget* makeEditor(QWidget* parent, const QModelIndex& index) const = 0;
    /// What becomes of an entry, the text of an editor.
    virtual Outcome outcomeOf(const QModelIndex& index, const QVariant& entry) const = 0;

    /// A line with the cell's value as it is stored.
    static QWidget* makeLine(QWidget* parent, const QModelIndex& index);
    /// How far below the top-level rows a cell is.
    static int depth(const QModelIndex& index);
    static QString storedText(const QModelIndex& index);
    static QModelIndex keyOf(const QModelIndex& index);

private:
    void commitAndClose();
    /// Nothing for an editor that was not changed.
    std::optional<Outcome> outcomeOfEditor(QWidget* editor, const QModelIndex& index) const;
};

} // namespace widgets
