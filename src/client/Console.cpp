#include "Console.h"

#include "EventLoopTurn.h"

#include <QAbstractButton>
#include <QEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTextEdit>

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace {

/// Records that one turn of the event loop shows at once at most.
constexpr int atOnceLimit = 300;

/// Of the time, the part that goes into showing records at once, and what may be taken in advance.
constexpr int allowancePart = 5;
constexpr qint64 mostAllowance = 1'500'000'000;

/// Milliseconds between two refreshes in a flood, between two steps of filling up, and until a view that
/// nobody sees asks again whether it is its turn.
constexpr int refreshTime = 100;
constexpr int fillTime = 5;
constexpr int waitTime = 20;

/// Weight of the entries that one step of filling up adds.
constexpr int fillWeight = 40;
/// Waiting entries that are appended rather than written anew with a restart.
constexpr std::size_t mostAppended = 250;
/// Records between two refreshes that are no flood any more.
constexpr int fewRecords = 3;

/// Keeps what is selected in a view while the document changes before and behind it: a cursor alone takes in
/// what is inserted at its ends.
class SelectionKeeper {
public:
    explicit SelectionKeeper(QTextEdit* view)
        : m_view(view)
    {
        const QTextCursor cursor = view->textCursor();
        if (!cursor.hasSelection())
            return;
        m_first = m_last = QTextCursor(view->document());
        m_first.setPosition(cursor.selectionStart());
        m_last.setPosition(cursor.selectionEnd());
        m_last.setKeepPositionOnInsert(true);
    }
    ~SelectionKeeper()
    {
        QTextCursor cursor = m_view->textCursor();
        const bool isKept =
            cursor.selectionStart() == m_first.position() && cursor.selectionEnd() == m_last.position();
        if (m_first.isNull() || isKept)
            return;
        // What was selected is gone where the two have changed places.
        if (m_first > m_last)
            m_first = m_last;
        const bool backwards = cursor.position() < cursor.anchor();
        cursor.setPosition((backwards ? m_last : m_first).position());
        cursor.setPosition((backwards ? m_first : m_last).position(), QTextCursor::KeepAnchor);
        const int place = m_view->verticalScrollBar()->value();
        m_view->setTextCursor(cursor);
        m_view->verticalScrollBar()->setValue(place);
    }
    SelectionKeeper(const SelectionKeeper&) = delete;
    SelectionKeeper& operator=(const SelectionKeeper&) = delete;

private:
    QTextEdit* m_view;
    QTextCursor m_first; ///< None where nothing is selected.
    QTextCursor m_last;
};

} // namespace

/// Keeps the text that is at the top of a view where it is, while the document changes above it or is laid
/// out anew.
class Console::PlaceKeeper {
public:
    explicit PlaceKeeper(QTextEdit* view)
        : m_view(view)
        , m_top(view->cursorForPosition(QPoint(0, 0)))
        , m_y(view->cursorRect(m_top).top())
    {
    }
    void restore() const
    {
        QScrollBar& bar = *m_view->verticalScrollBar();
        bar.setValue(bar.value() + m_view->cursorRect(m_top).top() - m_y);
    }
    int position() const { return m_top.position(); }
    /// Follows a text that was written anew, the same as before.
    void setPosition(int position) { m_top.setPosition(position); }

private:
    QTextEdit* m_view;
    QTextCursor m_top;
    int m_y;
};

Console::Console(QTextEdit* view, QAbstractButton* autoScroll, QObject* parent)
    : QObject(parent)
    , m_view(view)
    , m_autoScroll(autoScroll)
    , m_document(view->document())
    , m_spool(new ConsoleSpool(this))
    , m_allowance(mostAllowance)
{
    m_sinceAllowance.start();
    m_document.setPalette(view->palette());
    m_refresh.setSingleShot(true);
    // One that came and went would have all text laid out for another width, twice in each restart.
    view->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    view->installEventFilter(this);
    view->viewport()->installEventFilter(this);
    connect(&m_refresh, &QTimer::timeout, this, &Console::refresh);
    connect(autoScroll, &QAbstractButton::toggled, this, &Console::autoScrollToggled);
    connect(view->verticalScrollBar(), &QAbstractSlider::actionTriggered, this, &Console::readerScrolled);
    connect(view->verticalScrollBar(), &QAbstractSlider::rangeChanged, this, [this](int, int end) {
        // Text that is laid out anew, in other widths or another font, is so bit by bit.
        if (follows())
            m_view->verticalScrollBar()->setValue(end);
    });
    connect(view, &QTextEdit::selectionChanged, this, &Console::readerSelected);
    connect(m_spool, &ConsoleSpool::failed, this, [this](const QString& reason) {
        Q_EMIT notice(
            tr("The complete console cannot be kept for saving (%1). What is shown is not affected.")
                .arg(reason));
    });
}

Console::~Console() = default;

void Console::add(const ui::messages::Message& record, bool backlog)
{
    if (console_entry::isShown(record.type()))
        addEntry(console_entry::pack(record), backlog);
}

void Console::addClosingLine(const QString& text)
{
    addEntry(console_entry::packClosingLine(text.toStdString()), false);
}

void Console::addEntry(std::string entry, bool backlog)
{
    m_spool->append(entry);
    m_backlog = backlog;
    beginTurn();
    if (m_flooded || m_document.isClosed()) {
        m_document.enqueue(std::move(entry));
        ++m_sinceRefresh;
    } else if (backlog || !m_turnIsAffordable || m_atOnce >= atOnceLimit) {
        m_flooded = true;
        m_sinceRefresh = 1;
        m_document.enqueue(std::move(entry));
        m_refresh.start(0);
    } else {
        addAtOnce(std::move(entry));
    }
}

void Console::beginTurn()
{
    if (m_turnRunning)
        return;
    m_turnRunning = true;
    m_turnIsAffordable = m_flooded || isAffordable();
    m_atOnce = 0;
    QMetaObject::invokeMethod(
        this, [this] { m_turnRunning = false; }, Qt::QueuedConnection);
}

bool Console::isAffordable()
{
    m_allowance = std::min(mostAllowance, m_allowance + m_sinceAllowance.nsecsElapsed() / allowancePart);
    m_sinceAllowance.restart();
    return m_allowance > 0;
}

void Console::addAtOnce(std::string entry)
{
    QElapsedTimer time;
    time.start();
    ++m_atOnce;
    {
        const SelectionKeeper selection(m_view);
        m_document.append(std::move(entry));
        trimIfOverfull();
    }
    if (follows())
        followEnd();
    if (!m_refresh.isActive() && hasMoreToShow())
        m_refresh.start(fillTime);
    event_loop_turn::addDrawing(this, time.nsecsElapsed());
    m_allowance -= time.nsecsElapsed();
}

void Console::refresh()
{
    const bool visible = m_view->isVisible();
    const bool over = !m_flooded || isFloodOver();
    // One view at a time, and first the one that is looked at.
    if ((visible || over) && !event_loop_turn::claimDrawing()) {
        m_refresh.start(visible ? 0 : waitTime);
        return;
    }
    m_sinceRefresh = 0;
    m_backlog = false;
    if (!visible && !over) {
        m_refresh.start(refreshTime);
        return;
    }
    QElapsedTimer time;
    time.start();
    const bool more = showMore();
    if (follows())
        followEnd();
    const auto cost = static_cast<int>(time.elapsed());
    const bool isBehind = m_document.waiting() > 0 && !m_document.isClosed();
    if (over)
        m_flooded = isBehind;
    if (isBehind || (more && !m_flooded))
        m_refresh.start(visible ? std::max(fillTime, cost) : waitTime + cost);
    else if (m_flooded)
        m_refresh.start(std::max(refreshTime, 8 * cost));
}

/// Brings the document nearer to what it should show. True when there is more to do.
bool Console::showMore()
{
    if (m_document.isClosed())
        return false;
    const bool following = follows();
    const SelectionKeeper selection(m_view);
    if (m_document.waiting() > 0) {
        if (!following && m_document.hasGap())
            m_document.close(tr("Newer entries have arrived. Tick \"Auto-scroll\" to see them."));
        else if (following
            && (m_document.waiting() > mostAppended || m_document.hasGap() || m_document.needsRebuild()))
            m_document.restart(restartWeight());
        else
            m_document.appendWaiting(restartWeight());
        trimIfOverfull();
    } else if (following && m_document.needsRebuild()) {
        m_document.restart(restartWeight());
    } else if (m_document.isFillable() && !m_flooded) {
        std::optional<PlaceKeeper> place;
        if (!following)
            place.emplace(m_view);
        m_document.fill(fillWeight);
        if (place)
            place->restore();
    } else if (following && !m_flooded && m_document.canRewriteWithOlder()) {
        // A reader would be moved.
        m_document.rewriteWithOlder();
        // So much is laid out in more than one turn, and its end is where it stays only then.
        return true;
    }
    return hasMoreToShow();
}

bool Console::hasMoreToShow() const
{
    return m_document.isFillable()
        || (follows() && (m_document.needsRebuild() || m_document.canRewriteWithOlder()));
}

bool Console::isFloodOver()
{
    return m_sinceRefresh <= fewRecords && !m_backlog && isAffordable();
}

/// As much as fills the view.
int Console::restartWeight() const
{
    constexpr int least = 20;
    constexpr int most = 150;
    return std::clamp(
        m_view->viewport()->height() / std::max(1, m_view->fontMetrics().lineSpacing()) + 5, least, most);
}

void Console::trimIfOverfull()
{
    if (!m_document.isOverfull())
        return;
    if (follows()) {
        if (!m_document.trim(std::numeric_limits<int>::max()))
            m_document.restart(restartWeight());
        return;
    }
    const PlaceKeeper place(m_view);
    if (!m_document.trim(trimLimit()))
        m_document.close(tr("Newer entries have arrived. Tick \"Auto-scroll\" to see them."));
    place.restore();
}

/// The position from which on the reader sees the text or has selected it.
int Console::trimLimit() const
{
    const QTextCursor own = m_view->textCursor();
    const int top = m_view->cursorForPosition(QPoint(0, 0)).position();
    return own.hasSelection() ? std::min(top, own.selectionStart()) : top;
}

void Console::clear()
{
    m_document.clear();
    m_spool->clear();
}

void Console::setFont(const QFont& font)
{
    m_view->setFont(font);
    m_view->document()->setDefaultFont(font);
}

bool Console::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::PaletteChange:
        if (watched == m_view)
            recolour();
        break;
    case QEvent::FontChange:
    case QEvent::Resize:
        if (!follows())
            keepPlace();
        break;
    case QEvent::Show:
        if (watched == m_view && m_document.waiting() > 0)
            m_refresh.start(0);
        break;
    case QEvent::KeyPress:
        if (watched == m_view)
            readerPressedKey();
        break;
    case QEvent::MouseButtonPress:
        if (watched != m_view && static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton)
            readerHolds(true);
        break;
    case QEvent::MouseButtonRelease:
    case QEvent::Leave: // where something else has taken the release
    case QEvent::Hide:
        if (watched != m_view)
            readerHolds(false);
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void Console::recolour()
{
    m_document.setPalette(m_view->palette());
    if (follows()) {
        m_document.restart(restartWeight());
        followEnd();
        m_refresh.start(fillTime);
        return;
    }
    // The same text takes the same room.
    const int place = m_view->verticalScrollBar()->value();
    QTextCursor cursor = m_view->textCursor();
    const auto [anchor, position] = std::pair(cursor.anchor(), cursor.position());
    const int top = m_place ? m_place->position() : 0;
    m_document.rewrite();
    if (m_place)
        m_place->setPosition(top);
    cursor.setPosition(anchor);
    cursor.setPosition(position, QTextCursor::KeepAnchor);
    m_view->setTextCursor(cursor);
    m_view->verticalScrollBar()->setValue(place);
}

/// Keeps what the reader sees in its place while the view lays its text out anew, before which it is told.
void Console::keepPlace()
{
    if (m_place)
        return;
    m_place = std::make_unique<PlaceKeeper>(m_view);
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_place->restore();
            m_place.reset();
        },
        Qt::QueuedConnection);
}

bool Console::follows() const
{
    return m_autoScroll->isChecked() && !m_held;
}

void Console::followEnd()
{
    m_view->setTextCursor(m_document.writeCursor());
    m_view->ensureCursorVisible();
}

void Console::autoScrollToggled(bool on)
{
    if (!on)
        return;
    m_held = false;
    if (m_document.isClosed() || m_document.waiting() > 0) {
        m_document.restart(restartWeight());
        m_refresh.start(fillTime);
    }
    followEnd();
}

void Console::readerScrolled()
{
    const QScrollBar& bar = *m_view->verticalScrollBar();
    if (bar.sliderPosition() < bar.maximum())
        m_autoScroll->setChecked(false);
}

void Console::readerSelected()
{
    if (m_view->textCursor().hasSelection())
        m_autoScroll->setChecked(false);
}

/// Keys move the cursor, and with it the text, unlike a scroll bar.
void Console::readerPressedKey()
{
    const auto distance = [this] {
        const QScrollBar& bar = *m_view->verticalScrollBar();
        return bar.maximum() - bar.value();
    };
    QMetaObject::invokeMethod(
        this,
        [this, distance, cursor = m_view->textCursor(), before = distance()] {
            if (m_view->textCursor() < cursor || distance() > before)
                m_autoScroll->setChecked(false);
        },
        Qt::QueuedConnection);
}

/// Between a press and the drag that selects from there, nothing may move the text or its cursor.
void Console::readerHolds(bool holds)
{
    if (std::exchange(m_held, holds) && !holds)
        autoScrollToggled(m_autoScroll->isChecked());
}
