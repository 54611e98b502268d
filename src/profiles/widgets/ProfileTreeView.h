#pragma once

#include "NameChooser.h"
#include "TreePlace.h"

#include <QPersistentModelIndex>
#include <QString>
#include <QStringList>
#include <QTreeView>

class QAction;
class QMenu;

namespace widgets {

/// A view of one section of a profile. While it is editable it has a context menu: adding a row at the top,
/// adding a row below such a row, "Delete", and "Duplicate".
///
/// F2 and Enter edit the value of the current row, or its key where it has no value; Shift+F2 edits the key.
/// Tab goes from value to value. The left and right keys move between key and value where there is nothing to
/// open or close. When the model is reset, the reader's place is kept.
class ProfileTreeView : public QTreeView {
    Q_OBJECT

public:
    void setModel(QAbstractItemModel* model) override;
    void dataChanged(
        const QModelIndex& topLeft, const QModelIndex& bottomRight, const QList<int>& roles = {}) override;
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

    /// Whether there is a context menu. Whether cells can be edited is the model's affair.
    void setEditable(bool editable);

    /// Ends an edit that is under way, with what was typed. False where that cannot be stored: the editor
    /// stays open then and a tool tip says why.
    bool finishEdit();

public Q_SLOTS:
    void deleteItemTriggered();
    void resizeToFit();

protected:
    /// The texts are those of the first two actions.
    ProfileTreeView(const QString& addTop, const QString& addChild, QWidget* parent);

    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;

    QAction* addTopAction() const { return m_addTop; }
    QAction* addChildAction() const { return m_addChild; }

    /// Shows the menu with the actions that make sense at `pos`, which is in the viewport's coordinates. The
    /// place is remembered until the next time, or until the user goes elsewhere with the keyboard.
    void showMenu(const QPoint& pos, bool canAddTop);
    /// The row at the top to which the remembered place belongs.
    QModelIndex contextTop() const;

    /// Asks for one of the names; empty when the user cancelled.
    QString ask(const QString& title, const QString& label, const QStringList& names);
    /// Asks for a name, also for one that is not among these.
    QString askForAny(const QString& title, const QString& label, const QStringList& names,
        const NameChooser::RefusalFor& refusalFor);

    /// The key for a copy of a row at the top; invalid where there is none left.
    virtual QVariant freeKey() const = 0;

    /// Adds a row with that key below the remembered place, or as the first one where that is the parent
    /// itself. Shows it and returns its index, an invalid one when the model refused.
    QModelIndex addRow(const QModelIndex& parent, const QVariant& key);
    QModelIndex addRow(int row, const QModelIndex& parent, const QVariant& key);

private:
    void measureValues();
    void fitColumns();
    QModelIndex valueOf(const QModelIndex& index) const;
    bool editCell(const QModelIndex& cell);
    void editRow(const QModelIndex& row);
    void editNextValue(bool forwards);
    void duplicateRow();
    void removeSelected();

    QMenu* m_menu;
    QAction* m_addTop;
    QAction* m_addChild;
    QAction* m_delete;
    QAction* m_duplicate;
    QPersistentModelIndex m_contextIndex;
    TreePlace m_place;
    /// What the columns need, in pixels.
    int m_keyWidth = 0;
    int m_valueWidth = 0;
    bool m_hasResized = false;
    bool m_resizesAgain = false;
};

} // namespace widgets
