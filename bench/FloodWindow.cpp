#include "FloodWindow.h"

#include "ClientInterface.h"
#include "Console.h"
#include "ErrorListModel.h"
#include "FloodSender.h"
#include "FloodedWindow.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QMouseEvent>
#include <QTabBar>
#include <QTabWidget>
#include <QTimer>

#include <algorithm>
#include <array>
#include <atomic>
#include <ctime>
#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>

#include <malloc.h>
#include <unistd.h>

using ui::messages::Message;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace flood {

namespace {

/// Bytes of memory that this process has in use.
double residentMemory()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("cannot read /proc/self/statm");
    return file.readAll().split(' ').value(1).toDouble() * static_cast<double>(sysconf(_SC_PAGESIZE));
}

std::size_t textOfRow(const Message& record)
{
    switch (record.type()) {
    case Type::Warning:
    case Type::Error:
        return record.text(offset::text).size();
    case Type::GlError:
        return record.text(offset::glErrorDescription).size();
    default:
        return 0;
    }
}

/// Watches how long the event loop takes to come round, by the clock and in processor time of its own: on a
/// busy machine others run in between.
class GapWatch {
public:
    GapWatch()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            m_gap.clock = std::max(m_gap.clock, milliseconds(m_since));
            m_gap.work = std::max(m_gap.work, processorTime() - m_workBefore);
            m_since.restart();
            m_workBefore = processorTime();
        });
    }
    void start()
    {
        m_since.start();
        m_workBefore = processorTime();
        m_timer.start(1);
    }
    Span stop()
    {
        m_timer.stop();
        return m_gap;
    }

private:
    QTimer m_timer;
    QElapsedTimer m_since;
    double m_workBefore = 0;
    Span m_gap;
};

/// Clicks on the tabs of a page from another thread, as a desktop does, and sees when the page is painted.
class Clicker : public QObject {
public:
    explicit Clicker(QTabWidget& pages)
        : m_bar(pages.tabBar())
    {
        for (int i = 0; i < 2; ++i) {
            pages.widget(i)->installEventFilter(this);
            m_places[static_cast<std::size_t>(i)] = m_bar->tabRect(i).center();
        }
        m_thread = std::thread([this] { run(); });
    }
    ~Clicker() override
    {
        m_ended = true;
        m_thread.join();
    }
    double slowest() const { return m_slowest; }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && m_waiting && m_bar->currentIndex() == m_wanted) {
            m_slowest = std::max(m_slowest, milliseconds(m_sinceClick));
            m_waiting = false;
        }
        return QObject::eventFilter(watched, event);
    }

private:
    void run()
    {
        while (!m_ended) {
            std::this_thread::sleep_for(std::chrono::milliseconds(150));
            if (m_waiting)
                continue;
            m_wanted = 1 - m_wanted;
            m_sinceClick.start();
            m_waiting = true;
            const QPointF place = m_places[static_cast<std::size_t>(m_wanted)];
            for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
                const Qt::MouseButtons held =
                    type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton;
                QCoreApplication::postEvent(
                    m_bar, new QMouseEvent(type, place, place, Qt::LeftButton, held, Qt::NoModifier));
            }
        }
    }

    QTabBar* m_bar;
    std::array<QPointF, 2> m_places;
    std::atomic<int> m_wanted = 0;
    std::atomic<bool> m_waiting = false;
    std::atomic<bool> m_ended = false;
    QElapsedTimer m_sinceClick;
    double m_slowest = 0;
    std::thread m_thread;
};

/// Stamps the tenths of a flood, and the memory in it.
struct Course {
    explicit Course(int total)
        : records(total)
    {
    }
    void pass(const Message& record)
    {
        if (seen++ == 0) {
            time.start();
            workAtStart = processorTime();
        }
        text += static_cast<double>(textOfRow(record));
        rows += textOfRow(record) > 0 ? 1 : 0;
        if (seen == records / 10)
            firstTenth = {milliseconds(time), processorTime() - workAtStart};
        if (seen == records / 10 * 3)
            memory = residentMemory() - text, earlyRows = rows;
        if (seen == records - records / 10)
            beforeLast = {milliseconds(time), processorTime() - workAtStart};
        if (seen == records)
            end = {milliseconds(time), processorTime() - workAtStart};
    }

    int records;
    int seen = 0;
    QElapsedTimer time;
    double workAtStart = 0;
    Span firstTenth;
    Span beforeLast;
    Span end;
    double memory = 0; ///< At three tenths, without the text of the rows.
    double text = 0;
    int rows = 0;
    int earlyRows = 0;
};

} // namespace

Result measureWindow(int records, Meanwhile meanwhile)
{
    // What former measurements gave back would hide what this one takes.
    malloc_trim(0);
    Window window(meanwhile == Meanwhile::Recording);
    Course course(records);
    GapWatch gaps;
    std::unique_ptr<Clicker> clicker;
    window.onRecord = [&](const Message& record) {
        if (course.seen == 0) {
            gaps.start();
            if (meanwhile == Meanwhile::Clicks)
                clicker = std::make_unique<Clicker>(
                    *window.page().findChild<QTabWidget*>(QStringLiteral("tabWidget")));
        }
        course.pass(record);
    };
    const Senders senders(1, QStringLiteral("Corvale"), records, 0);
    window.waitFor(records, senders);

    Result result;
    result.longestGap = gaps.stop();
    result.bytesPerRow =
        (residentMemory() - course.text - course.memory) / std::max(1, course.rows - course.earlyRows);
    result.rate = (records - 1) * 1000.0 / course.end.clock;
    result.work = course.end.work * 1000 / (records - 1);
    result.flatness = {course.firstTenth.clock / (course.end.clock - course.beforeLast.clock),
        course.firstTenth.work / (course.end.work - course.beforeLast.work)};
    if (clicker)
        result.slowestClick = clicker->slowest();
    clicker.reset();
    result.rows = window.page().errorListModel().rowCount();
    if (result.rows != course.rows)
        throw std::runtime_error("the error list has not one row for each error and warning");
    QElapsedTimer sinceEnd;
    sinceEnd.start();
    while (!window.page().console().isComplete() && !sinceEnd.hasExpired(patience))
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    result.settled = milliseconds(sinceEnd);
    return result;
}

CrowdResult measureCrowd(int clients, int rate, int seconds)
{
    Window window;
    GapWatch gaps;
    QElapsedTimer sinceAll;
    int before = 0;
    const Senders senders(clients, QStringLiteral("Corvale"), rate * (seconds + 600), rate);
    QElapsedTimer waited;
    waited.start();
    while (window.clients().size() < static_cast<std::size_t>(clients)) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (waited.hasExpired(patience) || senders.haveFailed())
            throw std::runtime_error("the clients did not connect");
    }
    // A copy: the counts go on.
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    const std::map<const Client*, int> start = window.clients();
    before = window.count();
    sinceAll.start();
    gaps.start();
    while (!sinceAll.hasExpired(1000LL * seconds))
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    CrowdResult result;
    result.longestGap = gaps.stop();
    const double total = window.count() - before;
    result.rate = total * 1000 / milliseconds(sinceAll);
    double slowest = total;
    for (const auto& [client, count] : window.clients())
        slowest = std::min<double>(slowest, count - start.at(client));
    result.fairness = slowest * clients / total;
    return result;
}

QString measureIdle()
{
    class TimerCount : public QObject {
    public:
        bool eventFilter(QObject* watched, QEvent* event) override
        {
            count += event->type() == QEvent::Timer ? 1 : 0;
            return QObject::eventFilter(watched, event);
        }
        int count = 0;
    };

    Window window;
    const Senders senders(1, QStringLiteral("Corvale"), 5000, 0);
    window.waitFor(5000, senders);
    QElapsedTimer time;
    time.start();
    while (!time.hasExpired(3000))
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
    TimerCount timers;
    QCoreApplication::instance()->installEventFilter(&timers);
    const std::clock_t before = std::clock();
    // Nothing but this thread's end wakes the event loop.
    std::atomic<bool> ended = false;
    std::thread sleeper([&ended] {
        std::this_thread::sleep_for(std::chrono::seconds(2));
        ended = true;
        QCoreApplication::eventDispatcher()->wakeUp();
    });
    while (!ended)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    sleeper.join();
    const double used = static_cast<double>(std::clock() - before) * 1000 / CLOCKS_PER_SEC;
    return QStringLiteral("%1, %2 ms").arg(timers.count).arg(used, 0, 'f', 1);
}

} // namespace flood
