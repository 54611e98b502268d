#include "ReadingErrors.h"

#include "ErrorFilterBar.h"
#include "ErrorListFilterProxyModel.h"
#include "ErrorListModel.h"
#include "ErrorListView.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QIcon>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTextStream>
#include <QVBoxLayout>

#include <algorithm>
#include <ctime>
#include <functional>
#include <limits>
#include <stdexcept>

using namespace error_list;

namespace reading {

namespace {

constexpr int patience = 120'000;

double milliseconds(const QElapsedTimer& timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

/// Milliseconds that this thread has worked: on a busy machine others run in between.
double processorTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1000 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// A list in a window, as a page of a client has it.
class List {
public:
    explicit List(int rows)
        : m_model(QIcon(), QIcon(), QIcon())
    {
        add(rows);
        m_filter.setSourceModel(&m_model);
        auto* layout = new QVBoxLayout(&m_window);
        layout->addWidget(&m_bar);
        layout->addWidget(&m_view);
        m_view.setModel(&m_filter);
        QObject::connect(
            &m_bar, &ErrorFilterBar::filterChanged, &m_filter, &ErrorListFilterProxyModel::setFilter);
        m_window.resize(900, 600);
        m_window.show();
        settle();
    }

    /// Does something, and prints until when its first rows and all its rows are shown.
    void measure(QTextStream& out, const QString& what, const std::function<void()>& act)
    {
        QElapsedTimer time;
        time.start();
        const double workBefore = processorTime();
        act();
        m_view.viewport()->repaint();
        double longest = milliseconds(time);
        double first = m_filter.rowCount() > 0 ? longest : 0;
        while (!m_filter.isSettled()) {
            QElapsedTimer step;
            step.start();
            QCoreApplication::processEvents();
            longest = std::max(longest, milliseconds(step));
            if (first == 0 && m_filter.rowCount() > 0)
                first = milliseconds(time);
            if (time.hasExpired(patience))
                throw std::runtime_error("a filter does not end");
        }
        const double all = milliseconds(time);
        out << what.leftJustified(44) << number(first) << number(all) << number(processorTime() - workBefore)
            << number(longest) << QString::number(m_filter.rowCount()).rightJustified(10) << Qt::endl;
    }

    /// Adds rows without a pause while something is shown, and prints the rows a second and the longest gap.
    void stream(QTextStream& out, const QString& what, int rows)
    {
        QElapsedTimer time;
        time.start();
        double longest = 0;
        for (int added = 0; added < rows;) {
            QElapsedTimer pass;
            pass.start();
            while (added < rows && pass.nsecsElapsed() < 10'000'000) {
                add(50);
                added += 50;
            }
            QCoreApplication::processEvents();
            longest = std::max(longest, milliseconds(pass));
        }
        const double rate = rows * 1000.0 / milliseconds(time);
        settle();
        out << what.leftJustified(44) << QString::number(rate, 'f', 0).rightJustified(10) << " rows/s"
            << QString::number(longest, 'f', 1).rightJustified(13) << Qt::endl;
    }

    /// Copies all rows, whatever the limit, and prints how long that takes and the most work in one go.
    void copyAll(QTextStream& out, const QString& what)
    {
        QElapsedTimer time;
        time.start();
        const double workBefore = processorTime();
        m_view.copying().setMostText(std::numeric_limits<int>::max());
        m_view.selectAll();
        QCoreApplication::processEvents();
        QKeyEvent key(QEvent::KeyPress, Qt::Key_C, Qt::ControlModifier);
        QCoreApplication::sendEvent(&m_view, &key);
        double longest = processorTime() - workBefore;
        while (m_view.copying().isBusy()) {
            const double before = processorTime();
            QCoreApplication::processEvents();
            longest = std::max(longest, processorTime() - before);
        }
        out << what.leftJustified(44) << number(milliseconds(time)) << " ms, most work at once"
            << number(longest) << Qt::endl;
    }

    void write(const QString& text) { m_bar.findChild<QLineEdit*>()->setText(text); }
    ErrorListFilterProxyModel& filter() { return m_filter; }

private:
    static QString number(double value) { return QString::number(value, 'f', 1).rightJustified(10); }

    void add(int rows)
    {
        static const QStringList functions = {QStringLiteral("glTexImage2D"),
            QStringLiteral("glDrawElements"), QStringLiteral("glUniform4fv"), QStringLiteral("glBindBuffer")};
        for (const int end = m_model.rowCount() + rows; m_model.rowCount() < end;) {
            const int row = m_model.rowCount();
            m_model.append(row % 7 == 3 ? SeverityWarning : SeverityError, row / 20,
                row % 3 ? QStringLiteral("GL_INVALID_OPERATION") : QStringLiteral("GL_INVALID_VALUE"),
                QStringLiteral(
                    "Call %1 in pass %2: the texture level is too large for what was allocated before")
                    .arg(row)
                    .arg(row % 13),
                functions[row % 4]);
        }
    }

    void settle()
    {
        QElapsedTimer time;
        time.start();
        while (!m_filter.isSettled()) {
            QCoreApplication::processEvents();
            if (time.hasExpired(patience))
                throw std::runtime_error("the list does not settle");
        }
    }

    ErrorListModel m_model;
    ErrorListFilterProxyModel m_filter;
    QWidget m_window;
    ErrorFilterBar m_bar;
    ErrorListView m_view;
};

} // namespace

void measureErrors(QTextStream& out, int rows)
{
    List list(rows);
    out << QStringLiteral("error list, %1 rows; ms").arg(rows).leftJustified(44)
        << "     first       all  own work   longest      rows" << Qt::endl;
    const auto filter = [&](const char* text) {
        const QString words = QString::fromLatin1(text);
        list.measure(out, QStringLiteral("filter ") + words, [&] { list.write(words); });
    };
    filter("level");
    filter("\"pass 7:\"");
    filter("-\"pass 7:\" fn:glTex* code:GL_INVALID_*");
    filter("frame:100..40000 sev:error");
    filter("nowhere");
    filter("/call \\d+5 in/i");
    for (const char* text : {"p", "pa", "pas", "pass", "pass "})
        filter(text);
    filter("");
    list.copyAll(out, QStringLiteral("copy all rows"));
    auto& model = list.filter();
    const auto sort = [&](const char* what, int column, Qt::SortOrder order) {
        list.measure(out, QString::fromLatin1(what), [&] { model.sort(column, order); });
    };
    sort("sort by frame, from behind", FrameColumn, Qt::DescendingOrder);
    sort("sort by function", FunctionColumn, Qt::AscendingOrder);
    sort("sort by description", DescriptionColumn, Qt::AscendingOrder);
    list.stream(out, QStringLiteral("rows arrive in the sorted list"), rows / 10);
    sort("order of arrival", -1, Qt::AscendingOrder);
    list.measure(out, QStringLiteral("fold for the first time"), [&] { model.setFolded(true); });
    list.measure(out, QStringLiteral("open a group"), [&] { model.toggle(0); });
    sort("sort groups by count", CountColumn, Qt::DescendingOrder);
    list.stream(out, QStringLiteral("rows arrive in the folded list"), rows / 10);
    list.measure(out, QStringLiteral("unfold"), [&] { model.setFolded(false); });
    list.measure(out, QStringLiteral("fold again"), [&] { model.setFolded(true); });
    model.setFolded(false);
    filter("\"pass 7:\"");
    list.stream(out, QStringLiteral("rows arrive in the filtered list"), rows / 10);
}

} // namespace reading
