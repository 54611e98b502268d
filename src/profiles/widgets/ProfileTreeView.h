#pragma once

#include <QPersistentModelIndex>
#include <QString>
#include <QStringList>
#include <QTreeView>

class QAction;
class QMenu;

namespace widgets {

/// A view of one section of a profile. While it is editable it has a context menu with three actions: one
/// that adds a row at the top, one that adds a row below such a row, and "Delete".
class ProfileTreeView : public QTreeView {
    Q_OBJECT

public:
    void setModel(QAbstractItemModel* model) override;
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

    /// Whether there is a context menu. Whether cells can be edited is the model's affair.
    void setEditable(bool editable);

    /// Ends an edit that is under way, with what was typed. False where that cannot be stored: the editor
    /// stays open then and a tool tip says why.
    bool finishEdit();

    /// The keys of the rows at the top that are open, and opening them again in another model.
    QStringList openRows() const;
    void reopenRows(const QStringList& keys);

public Q_SLOTS:
    void deleteItemTriggered();
    void resizeToFit();

protected:
    /// The texts are those of the first two actions.
    ProfileTreeView(const QString& addTop, const QString& addChild, QWidget* parent);

    void resizeEvent(QResizeEvent* event) override;
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

    /// Adds a row with that key below the remembered place, or as the first one where that is the parent
    /// itself. Shows it and returns its index, an invalid one when the model refused.
    QModelIndex addRow(const QModelIndex& parent, const QVariant& key);
    QModelIndex addRow(int row, const QModelIndex& parent, const QVariant& key);

private:
    void fitValues();

    QMenu* m_menu;
    QAction* m_addTop;
    QAction* m_addChild;
    QAction* m_delete;
    QPersistentModelIndex m_contextIndex;
    /// What the values need, in pixels.
    int m_valueWidth = 0;
    bool m_hasResized = false;
    bool m_resizesAgain = false;
};

} // namespace widgets
