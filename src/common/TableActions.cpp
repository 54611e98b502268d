#include "TableActions.h"

#include <QAbstractItemView>
#include <QAction>
#include <QItemSelectionModel>
#include <QMenu>

#include <algorithm>
#include <utility>

TableActions::TableActions(QAbstractItemView& view, std::function<TextTable()> table)
    : QObject(&view)
    , m_view(view)
    , m_table(std::move(table))
{
    connect(&m_copy, &TableCopy::statusMessage, this, &TableActions::statusMessage);
    auto* withHeaders = new QAction(tr("Copy with &Headers"), this);
    withHeaders->setShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C));
    withHeaders->setShortcutContext(Qt::WidgetShortcut);
    connect(withHeaders, &QAction::triggered, this, [this] { copy(TextTable::Format::Text, true); });
    view.addAction(withHeaders);
    auto* menu = new QMenu(tr("Copy &Rows As"), &view);
    menu->setObjectName(QStringLiteral("menuCopyRows"));
    using Format = TextTable::Format;
    add(*menu, tr("&Text"), Format::Text, false);
    add(*menu, tr("&CSV"), Format::Csv, false);
    add(*menu, tr("C&SV with Headers"), Format::Csv, true);
    add(*menu, tr("&Markdown"), Format::Markdown, false);
    add(*menu, tr("M&arkdown with Headers"), Format::Markdown, true);
    connect(menu, &QMenu::aboutToShow, this, [this, menu] {
        const bool hasRows = m_view.selectionModel() && m_view.selectionModel()->hasSelection();
        for (QAction* action : menu->actions())
            action->setEnabled(hasRows);
    });
    view.addAction(menu->menuAction());
}

void TableActions::add(QMenu& menu, const QString& text, TextTable::Format format, bool hasHeader)
{
    menu.addAction(text, this, [this, format, hasHeader] { copy(format, hasHeader); });
}

std::vector<int> TableActions::selectedRows(const QAbstractItemView& view)
{
    std::vector<int> rows;
    if (!view.selectionModel())
        return rows;
    for (const QItemSelectionRange& range : view.selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.push_back(row);
    }
    if (!std::is_sorted(rows.begin(), rows.end()))
        std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

void TableActions::copy(TextTable::Format format, bool hasHeader)
{
    std::vector<int> rows = selectedRows(m_view);
    if (!rows.empty())
        m_copy.start(m_table(), std::move(rows), format, hasHeader);
}
