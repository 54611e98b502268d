#include "ItemFind.h"

#include "ItemFindMarks.h"
#include "ScrollBarMarks.h"

#include <QElapsedTimer>
#include <QHeaderView>
#include <QScrollBar>
#include <QTableView>
#include <QTreeView>

#include <algorithm>

namespace {

/// Rows between two looks at the clock.
constexpr int rowsPerLook = 32;

/// Places in a scroll bar that can be told apart.
constexpr int barPlaces = 1000;

bool isShown(const QAbstractItemView& view, int column)
{
    if (const auto* table = qobject_cast<const QTableView*>(&view))
        return !table->isColumnHidden(column);
    const auto* tree = qobject_cast<const QTreeView*>(&view);
    return !tree || !tree->isColumnHidden(column);
}

} // namespace

ItemFind::ItemFind(QObject* parent)
    : LinearFind(parent)
{
}

void ItemFind::setViews(const QList<QAbstractItemView*>& views)
{
    stop();
    m_views.clear();
    for (QAbstractItemView* view : views) {
        m_views.append(view);
        if (m_marks.contains(view))
            continue;
        m_marks[view] = {new ItemFindMarks(view), new ScrollBarMarks(view->verticalScrollBar())};
        connect(view, &QObject::destroyed, this, [this, view] {
            m_marks.erase(view);
            restartSoon();
        });
    }
}

void ItemFind::follow(QAbstractItemModel* model)
{
    const auto restart = [this] {
        restartSoon();
    };
    m_connections.insert(m_connections.end(),
        {connect(model, &QAbstractItemModel::modelReset, this, restart),
            connect(model, &QAbstractItemModel::layoutChanged, this, restart),
            connect(model, &QAbstractItemModel::rowsRemoved, this, restart),
            connect(model, &QAbstractItemModel::rowsMoved, this, restart),
            connect(model, &QAbstractItemModel::dataChanged, this, restart),
            connect(model, &QObject::destroyed, this, restart),
            connect(model, &QAbstractItemModel::rowsInserted, this,
                [this, model](
                    const QModelIndex& parent, int first) { rowsInserted(model, parent, first); })});
}

/// Rows behind all that was searched need no other search.
void ItemFind::rowsInserted(const QAbstractItemModel* model, const QModelIndex& parent, int first)
{
    const bool isSimple =
        m_views.size() == 1 && m_levels.size() == 1 && m_views.first() && m_views.first()->model() == model;
    if (isSimple && !parent.isValid() && first >= m_levels.front().row)
        continueSoon();
    else
        restartSoon();
}

void ItemFind::begin()
{
    for (const QMetaObject::Connection& connection : m_connections)
        disconnect(connection);
    m_connections.clear();
    m_siblings.clear();
    m_levels.clear();
    m_viewsEntered = 0;
    m_matches.clear();
    m_marked = 0;
    m_firstAtReader.reset();
    m_movedTo.reset();
    m_readerView = nullptr;
    if (pattern().isEmpty())
        return;
    rememberRows();
    for (const QPointer<QAbstractItemView>& view : m_views) {
        if (!view || !view->model())
            continue;
        follow(view->model());
        if (view->selectionModel() && view->selectionModel()->hasSelection()
            && (!m_readerView || view->hasFocus())) {
            m_readerView = view;
            m_readerRow = view->currentIndex();
        }
    }
    if (!m_readerView)
        m_firstAtReader = 0;
}

bool ItemFind::enterNextView()
{
    while (m_viewsEntered < m_views.size()) {
        QAbstractItemView* view = m_views.at(m_viewsEntered++);
        if (view && view->model()) {
            enter(view, view->rootIndex());
            return true;
        }
    }
    return false;
}

void ItemFind::enter(QAbstractItemView* view, const QModelIndex& parent)
{
    m_levels.push_back({static_cast<std::uint32_t>(m_siblings.size()), 0});
    m_siblings.push_back({view, parent});
}

bool ItemFind::search()
{
    QElapsedTimer time;
    time.start();
    while (!isOver(time)) {
        for (int i = 0; i < rowsPerLook; ++i) {
            if (!searchRow())
                return false;
        }
    }
    return true;
}

/// Searches the next row. False at the end.
bool ItemFind::searchRow()
{
    if (m_levels.empty() && !enterNextView())
        return false;
    Level& level = m_levels.back();
    const Siblings siblings = m_siblings[level.siblings];
    const QAbstractItemModel* model = siblings.view ? siblings.view->model() : nullptr;
    if (!model || level.row >= model->rowCount(siblings.parent)) {
        // More rows may come to the only view.
        if (m_levels.size() == 1 && m_viewsEntered == m_views.size())
            return false;
        m_levels.pop_back();
        return true;
    }
    const int row = level.row++;
    const std::uint32_t number = level.siblings;
    const QModelIndex first = model->index(row, 0, siblings.parent);
    if (siblings.view == m_readerView && m_readerRow.row() == row && m_readerRow.parent() == siblings.parent)
        m_firstAtReader = m_matches.size();
    const int columns = model->columnCount(siblings.parent);
    for (int column = 0; column < columns; ++column) {
        if (isShown(*siblings.view, column)
            && pattern().isIn(first.siblingAtColumn(column).data(Qt::DisplayRole).toString()))
            m_matches.push_back({number, row, column});
    }
    if (model->hasChildren(first))
        enter(siblings.view, first);
    return true;
}

void ItemFind::rememberRows()
{
    m_seenRows.clear();
    for (const QPointer<QAbstractItemView>& view : m_views) {
        if (view)
            m_seenRows[view] = view->currentIndex().siblingAtColumn(0);
    }
}

bool ItemFind::followReader(Direction direction)
{
    QAbstractItemView* moved = nullptr;
    for (const QPointer<QAbstractItemView>& view : m_views) {
        const QModelIndex current = view ? view->currentIndex().siblingAtColumn(0) : QModelIndex();
        if (current.isValid() && m_seenRows[view] != current && (!moved || view->hasFocus()))
            moved = view;
    }
    if (!moved)
        return false;
    rememberRows();
    m_movedTo = pathOf(moved, moved->currentIndex().parent(), moved->currentIndex().row());
    m_isBehindMovedTo = direction == Direction::Forward;
    return true;
}

ItemFind::Path ItemFind::pathOf(QAbstractItemView* view, const QModelIndex& parent, int row) const
{
    Path path{m_views.indexOf(view), {row}};
    for (QModelIndex index = parent; index.isValid() && index != view->rootIndex(); index = index.parent())
        path.second.insert(path.second.begin(), index.row());
    return path;
}

ItemFind::Path ItemFind::pathOf(const Match& match) const
{
    const Siblings& siblings = m_siblings[match.siblings];
    return siblings.view ? pathOf(siblings.view, siblings.parent, match.row) : Path{-1, {}};
}

std::optional<std::size_t> ItemFind::firstAtReader() const
{
    if (!m_movedTo)
        return m_firstAtReader;
    const auto first = std::partition_point(m_matches.begin(), m_matches.end(), [this](const Match& match) {
        const Path path = pathOf(match);
        return m_isBehindMovedTo ? path <= *m_movedTo : path < *m_movedTo;
    });
    if (first == m_matches.end() && isSearching())
        return {};
    return static_cast<std::size_t>(first - m_matches.begin());
}

double ItemFind::searchedPart() const
{
    if (m_levels.empty() || m_views.isEmpty())
        return 0;
    const Level& outer = m_levels.front();
    const Siblings& siblings = m_siblings[outer.siblings];
    const int rows =
        siblings.view && siblings.view->model() ? siblings.view->model()->rowCount(siblings.parent) : 0;
    const double inView = rows > 0 ? static_cast<double>(outer.row) / rows : 1;
    return (static_cast<double>(m_viewsEntered) - 1 + inView) / static_cast<double>(m_views.size());
}

void ItemFind::show(std::size_t match)
{
    const Match& found = m_matches[match];
    const Siblings& siblings = m_siblings[found.siblings];
    if (!siblings.view || !siblings.view->model())
        return;
    const QModelIndex cell = siblings.view->model()->index(found.row, found.column, siblings.parent);
    if (!cell.isValid())
        return;
    Q_EMIT going(siblings.view);
    m_readerView = siblings.view;
    siblings.view->scrollTo(cell);
    siblings.view->setCurrentIndex(cell);
    rememberRows();
}

void ItemFind::mark()
{
    for (const QPointer<QAbstractItemView>& view : m_views) {
        const auto marks = view ? m_marks.find(view) : m_marks.end();
        if (marks == m_marks.end())
            continue;
        if (pattern().isEmpty() || !marks->second.cells->isVisible())
            marks->second.cells->setPattern(pattern());
    }
    if (m_marked != m_matches.size() || m_matches.empty())
        markScrollBars();
}

double ItemFind::placeOf(const Match& match) const
{
    const Siblings& siblings = m_siblings[match.siblings];
    int row = match.row;
    // Rows that are not open have the place of the one at the top above them.
    for (QModelIndex parent = siblings.parent; parent.isValid(); parent = parent.parent())
        row = parent.row();
    return static_cast<double>(row) / std::max(1, siblings.view->model()->rowCount());
}

void ItemFind::markScrollBars()
{
    std::map<QAbstractItemView*, std::vector<bool>> places;
    for (const Match& match : m_matches) {
        QAbstractItemView* view = m_siblings[match.siblings].view;
        if (!view || !view->model())
            continue;
        std::vector<bool>& marked = places[view];
        marked.resize(barPlaces + 1);
        marked[static_cast<std::size_t>(placeOf(match) * barPlaces)] = true;
    }
    m_marked = m_matches.size();
    for (const auto& [view, marks] : m_marks) {
        std::vector<double> list;
        const std::vector<bool>& marked = places[view];
        for (std::size_t i = 0; i < marked.size(); ++i) {
            if (marked[i])
                list.push_back(static_cast<double>(i) / barPlaces);
        }
        marks.bar->setMarks(std::move(list));
    }
}

QString ItemFind::selectedText() const
{
    for (const QPointer<QAbstractItemView>& view : m_views) {
        if (!view || !view->selectionModel() || !view->selectionModel()->hasSelection())
            continue;
        QString text = view->currentIndex().data(Qt::DisplayRole).toString();
        if (view->hasFocus() && !text.contains(QLatin1Char('\n')))
            return text;
    }
    return {};
}

QWidget* ItemFind::view() const
{
    if (m_readerView)
        return m_readerView;
    return m_views.isEmpty() ? nullptr : m_views.first();
}
