#include "ErrorListView.h"

#include "ErrorList.h"
#include "ErrorListDelegate.h"

#include <QAbstractButton>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QHeaderView>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace {

/// Milliseconds between two scrolls, each of which takes one.
constexpr int followPause = 50;

} // namespace

ErrorListView::ErrorListView(QWidget* parent)
    : QTableView(parent)
{
    setItemDelegate(new ErrorListDelegate(this));
    setWordWrap(false);
    setTextElideMode(Qt::ElideRight);
    setCornerButtonEnabled(false);
    setAlternatingRowColors(true);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setTabKeyNavigation(false);
    setUpRows();
    m_followPause.setSingleShot(true);
    m_followPause.setInterval(followPause);
    connect(&m_followPause, &QTimer::timeout, this, [this] {
        if (std::exchange(m_followsLater, false))
            followEnd();
    });
    connect(verticalScrollBar(), &QAbstractSlider::actionTriggered, this, &ErrorListView::readerScrolled);
    connect(verticalHeader(), &QHeaderView::sectionPressed, this, &ErrorListView::stopFollowing);
    connect(this, &QAbstractItemView::doubleClicked, this, &ErrorListView::requestContents);
}

void ErrorListView::setModel(QAbstractItemModel* model)
{
    QTableView::setModel(model);
    setUpColumns();
}

void ErrorListView::setFollowButton(QAbstractButton* button)
{
    m_followButton = button;
    connect(button, &QAbstractButton::toggled, this, &ErrorListView::followToggled);
}

void ErrorListView::followToggled(bool on)
{
    m_followPause.stop();
    m_followsLater = false;
    if (on)
        followEnd();
}

void ErrorListView::stopFollowing()
{
    if (m_followButton)
        m_followButton->setChecked(false);
}

/// Only up: who scrolls down does not leave the end, even where it has just moved on.
void ErrorListView::readerScrolled()
{
    if (verticalScrollBar()->sliderPosition() < verticalScrollBar()->value())
        stopFollowing();
}

int ErrorListView::distanceToEnd() const
{
    return verticalScrollBar()->maximum() - verticalScrollBar()->value();
}

void ErrorListView::followEnd()
{
    if (!isVisible() || m_followPause.isActive()) {
        m_followsLater = true;
        return;
    }
    scrollToBottom();
    m_followPause.start();
}

void ErrorListView::showEvent(QShowEvent* event)
{
    QTableView::showEvent(event);
    if (std::exchange(m_followsLater, false))
        followEnd();
}

void ErrorListView::setUpRows()
{
    // Measuring rows or columns by their contents would cost time for every row that arrives.
    const int iconSide = style()->pixelMetric(QStyle::PM_SmallIconSize);
    const int height = std::max(fontMetrics().height(), iconSide) + 6;
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(height);
    verticalHeader()->setDefaultSectionSize(height);
    verticalHeader()->setFixedWidth(iconSide + 12);
}

void ErrorListView::setUpColumns()
{
    if (model() == nullptr || model()->columnCount() < errorList::ColumnCount)
        return;
    const QFontMetrics metrics(font());
    const int margin = 4 * metrics.horizontalAdvance(QLatin1Char(' '));
    setColumnWidth(errorList::FrameColumn, metrics.horizontalAdvance(QStringLiteral("0000000")) + margin);
    setColumnWidth(errorList::FunctionColumn,
        metrics.horizontalAdvance(QStringLiteral("glFramebufferTexture2D")) + margin);
    setColumnWidth(
        errorList::CodeColumn, metrics.horizontalAdvance(QStringLiteral("GL_INVALID_OPERATION")) + margin);
    horizontalHeader()->setStretchLastSection(true);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
}

void ErrorListView::contextMenuEvent(QContextMenuEvent* event)
{
    Q_EMIT contextMenuOpened();
    const QModelIndexList selected = selectionModel() != nullptr ? selectedIndexes() : QModelIndexList();
    const QPersistentModelIndex cell = selected.value(0);

    // Rows arrive while the menu is open, and the tab may even be closed.
    const QPointer<ErrorListView> self(this);
    QMenu menu;
    QAction* view = menu.addAction(QStringLiteral("View contents"));
    view->setShortcut(Qt::Key_Return);
    view->setEnabled(cell.isValid());
    const QAction* chosen = menu.exec(viewport()->mapToGlobal(event->pos()));
    if (self && chosen == view && cell.isValid())
        requestContents(cell);
}

void ErrorListView::requestContents(const QModelIndex& index)
{
    if (!index.isValid())
        return;
    const QPoint corner = viewport()->mapToGlobal(visualRect(index).topLeft());
    Q_EMIT itemContentsRequested(index.row(), index.column(), corner);
}

void ErrorListView::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Copy)) {
        copySelection();
        event->accept();
        return;
    }
    if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && currentIndex().isValid()) {
        requestContents(currentIndex());
        event->accept();
        return;
    }
    // Rows that are still to be laid out would seem to be the key's doing.
    executeDelayedItemsLayout();
    const QModelIndex cell = currentIndex();
    const int distance = distanceToEnd();
    QTableView::keyPressEvent(event);
    const bool isLast = !currentIndex().siblingAtRow(currentIndex().row() + 1).isValid();
    if (distanceToEnd() > distance || (currentIndex() != cell && !isLast))
        stopFollowing();
}

void ErrorListView::mousePressEvent(QMouseEvent* event)
{
    if (indexAt(event->position().toPoint()).isValid())
        stopFollowing();
    QTableView::mousePressEvent(event);
}

void ErrorListView::copySelection() const
{
    QModelIndexList cells = selectionModel() != nullptr ? selectedIndexes() : QModelIndexList();
    if (cells.isEmpty())
        return;
    std::sort(cells.begin(), cells.end());
    QString text;
    for (qsizetype i = 0; i < cells.size(); ++i) {
        if (i > 0)
            text += QLatin1Char(cells[i].row() == cells[i - 1].row() ? '\t' : '\n');
        text += cells[i].data().toString();
    }
    QGuiApplication::clipboard()->setText(text);
}
