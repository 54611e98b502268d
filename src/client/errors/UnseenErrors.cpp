#include "UnseenErrors.h"

#include "ErrorListModel.h"
#include "EventLoopBudget.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>
#include <QWindow>

#include <utility>

namespace {

constexpr int tellPause = 200; // milliseconds

} // namespace

UnseenErrors::UnseenErrors(const ErrorListModel& errors, QWidget& widget)
    : QObject(&widget)
    , m_errors(errors)
    , m_widget(widget)
{
    m_pause.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, &UnseenErrors::tell);
    connect(&errors, &QAbstractItemModel::rowsInserted, this,
        [this](const QModelIndex&, int first, int last) { count(first, last); });
    connect(&errors, &QAbstractItemModel::modelReset, this, &UnseenErrors::clear);
    widget.installEventFilter(this);
    connect(qApp, &QApplication::focusWindowChanged, this, [this] {
        m_isSeen.reset();
        if (isSeen())
            clear();
    });
}

bool UnseenErrors::isSeen() const
{
    return m_widget.isVisible() && m_widget.isActiveWindow();
}

void UnseenErrors::count(int first, int last)
{
    if (!m_isCounting)
        return;
    // To find out takes longer than all the rest, and thousands of rows may come in an iteration.
    if (std::exchange(m_iteration, event_loop_budget::iteration()) != event_loop_budget::iteration()
        || !m_isSeen)
        m_isSeen = isSeen();
    if (*m_isSeen)
        return;
    for (int row = first; row <= last; ++row) {
        const qint32 severity = m_errors.severity(row);
        m_errorCount += severity == error_list::SeverityError ? 1 : 0;
        m_warningCount += severity == error_list::SeverityWarning ? 1 : 0;
    }
    if (!m_pause.isActive())
        m_pause.start(tellPause);
}

void UnseenErrors::tell()
{
    // A number that comes or grows lays all tabs of its bar out anew, which takes long where there are many.
    if (event_loop_budget::claimStep())
        Q_EMIT changed();
    else
        m_pause.start(0);
}

void UnseenErrors::clear()
{
    if (m_errorCount == 0 && m_warningCount == 0)
        return;
    m_errorCount = 0;
    m_warningCount = 0;
    m_pause.stop();
    Q_EMIT changed();
}

bool UnseenErrors::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    if (type == QEvent::Show || type == QEvent::Hide || type == QEvent::WindowActivate
        || type == QEvent::WindowDeactivate)
        m_isSeen.reset();
    if (type == QEvent::Show && m_widget.isActiveWindow())
        clear();
    return QObject::eventFilter(watched, event);
}
