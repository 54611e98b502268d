#include "ErrorListActions.h"

#include "ErrorListFilterProxyModel.h"
#include "ErrorListModel.h"
#include "ErrorListSortMenu.h"
#include "ErrorListTable.h"
#include "ErrorListView.h"
#include "MutedErrors.h"
#include "MutedErrorsDialog.h"
#include "TableActions.h"
#include "TableExport.h"

#include <QAction>
#include <QHeaderView>
#include <QInputDialog>
#include <QLocale>
#include <QPushButton>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <set>

namespace {

/// Kinds that are muted in one go.
constexpr std::size_t mostKinds = 1000;

} // namespace

ErrorListActions::ErrorListActions(ErrorListView& view, ErrorListFilterProxyModel& filter, QWidget& page)
    : QObject(&page)
    , m_view(view)
    , m_filter(filter)
    , m_page(page)
    , m_export(new TableExport(&page))
{
    add(tr("&Next Error"), QKeySequence(Qt::Key_F8), [this] { goToError(1); });
    add(tr("&Previous Error"), QKeySequence(Qt::SHIFT | Qt::Key_F8), [this] { goToError(-1); });
    add(tr("&Go to Frame..."), QKeySequence(Qt::CTRL | Qt::Key_G), [this] { askForFrame(); });
    m_view.addAction((new ErrorListSortMenu(*m_view.horizontalHeader(), &m_view))->menuAction());
    addTableActions();
}

QAction* ErrorListActions::add(
    const QString& text, const QKeySequence& key, const std::function<void()>& what)
{
    auto* action = new QAction(text, this);
    action->setShortcut(key);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(action, &QAction::triggered, this, what);
    m_page.addAction(action);
    m_view.addAction(action);
    return action;
}

/// The one after the current row, or before it; from one end on to the other.
void ErrorListActions::goToError(int step)
{
    const ErrorListModel* errors = m_filter.errors();
    const int count = m_filter.rowCount();
    if (!errors || count == 0)
        return;
    const QModelIndex current = m_view.currentIndex();
    int row = current.isValid() ? current.row() : (step > 0 ? -1 : count);
    // The view makes the first row the current one when it gets the focus; nobody has been there.
    if (current.isValid() && !m_view.selectionModel()->isSelected(current))
        row -= step;
    for (int i = 0; i < count; ++i) {
        row = (row + step + 2 * count) % count;
        if (errors->severity(m_filter.sourceRow(row)) == error_list::SeverityError) {
            m_view.goToRow(row);
            return;
        }
    }
}

void ErrorListActions::askForFrame()
{
    auto* dialog = new QInputDialog(&m_page);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(tr("Go to Frame"));
    dialog->setLabelText(tr("Frame, or the nearest one in the list:"));
    dialog->setInputMode(QInputDialog::IntInput);
    dialog->setIntRange(0, std::numeric_limits<int>::max());
    const int row = m_view.currentIndex().row();
    if (m_filter.errors() && row >= 0)
        dialog->setIntValue(std::max(0, m_filter.errors()->row(m_filter.sourceRow(row)).frame));
    connect(dialog, &QInputDialog::intValueSelected, this, [this](int frame) { goToFrames(frame, frame); });
    dialog->open();
}

void ErrorListActions::goToFrames(int first, int last)
{
    int nearest = -1;
    std::int64_t least = std::numeric_limits<std::int64_t>::max();
    for (int row = 0; least > 0 && row < m_filter.rowCount(); ++row) {
        const std::int64_t frame = m_filter.errors()->row(m_filter.sourceRow(row)).frame;
        if (frame < 0)
            continue;
        // Frames that are asked for are nearer than any others.
        const bool isAskedFor = frame >= first && frame <= last;
        const std::int64_t distance =
            std::abs(frame - first) + (isAskedFor ? 0 : std::int64_t(last) - first + 1);
        if (distance < least) {
            least = distance;
            nearest = row;
        }
    }
    if (nearest >= 0)
        m_view.goToRow(nearest);
}

bool ErrorListActions::goToSourceRow(int sourceRow)
{
    const int row = m_filter.rowOf(sourceRow);
    if (row >= 0)
        m_view.goToRow(row);
    return row >= 0;
}

void ErrorListActions::setRowOpener(const std::function<void(int)>& open)
{
    m_view.setRowOpener(open);
    // Its key is the view's own.
    auto* action = new QAction(tr("Show in &Console") + QLatin1Char('\t')
            + QKeySequence(Qt::Key_Return).toString(QKeySequence::NativeText),
        this);
    connect(action, &QAction::triggered, this, [this, open] {
        const QModelIndex current = m_view.currentIndex();
        if (current.isValid())
            open(m_filter.sourceRow(current.row()));
    });
    m_view.insertAction(m_view.actions().value(0), action);
}

void ErrorListActions::addTableActions()
{
    auto* copying = new TableActions(m_view, [this] { return error_list::shownTable(m_filter); });
    connect(copying, &TableActions::statusMessage, this, &ErrorListActions::statusMessage);
    connect(&m_view.copying(), &TableCopy::statusMessage, this, &ErrorListActions::statusMessage);
    connect(m_export, &TableExport::ended, this,
        [this](bool, const QString& text) { Q_EMIT statusMessage(text); });
    for (const bool all : {false, true}) {
        auto* action = new QAction(all ? tr("Export &All Rows...") : tr("&Export Shown Rows..."), this);
        connect(action, &QAction::triggered, this, [this, all] { exportRows(all); });
        m_view.addAction(action);
    }
    connect(m_filter.errors(), &QAbstractItemModel::modelAboutToBeReset, this,
        [this] { m_export->giveUp(tr("the list was cleared meanwhile.")); });
}

void ErrorListActions::exportRows(bool all)
{
    m_export->ask(tr("Export rows"), QStringLiteral("errors"), [this, all] {
        return all ? error_list::wholeTable(*m_filter.errors()) : error_list::shownTable(m_filter);
    });
}

void ErrorListActions::setMuted(MutedErrors* muted, QPushButton* button)
{
    m_muted = muted;
    m_mutedButton = button;
    m_filter.setMuted(&muted->kinds());
    m_mute = add(tr("&Mute This Kind"), QKeySequence(Qt::CTRL | Qt::Key_M), [this] { muteChosen(); });
    m_mute->setToolTip(tr("Hide all rows like the selected ones, in all lists and from now on"));
    add(tr("M&uted Kinds..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_M), [this] { showMuted(); });
    connect(muted, &MutedErrors::changed, this, [this] { m_filter.setMuted(&m_muted->kinds()); });
    connect(button, &QPushButton::clicked, this, &ErrorListActions::showMuted);
    connect(
        &m_filter, &ErrorListFilterProxyModel::mutedCountChanged, this, &ErrorListActions::updateMutedButton);
    updateMutedButton();
}

void ErrorListActions::muteChosen()
{
    std::vector<int> rows = TableActions::selectedRows(m_view);
    if (rows.empty() && m_view.currentIndex().isValid())
        rows.push_back(m_view.currentIndex().row());
    std::set<sessions::Signature> kinds;
    for (const int row : rows) {
        kinds.insert(m_filter.signatureOf(row));
        if (kinds.size() == mostKinds)
            break;
    }
    if (!kinds.empty())
        m_muted->mute({kinds.begin(), kinds.end()});
}

void ErrorListActions::showMuted()
{
    auto* dialog = new MutedErrorsDialog(*m_muted, &m_page);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void ErrorListActions::updateMutedButton()
{
    const int count = m_filter.mutedCount();
    m_mutedButton->setText(tr("%1 muted").arg(QLocale().toString(count)));
    m_mutedButton->setVisible(count > 0);
}
