#include "ReadingConsole.h"

#include "Client.h"
#include "ClientInterface.h"
#include "Console.h"
#include "FindBar.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QTabWidget>
#include <QTextEdit>
#include <QTextStream>
#include <QToolButton>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string>

using ui::messages::Message;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace reading {

namespace {

constexpr int patience = 120'000;

double milliseconds(const QElapsedTimer& timer)
{
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

void row(QTextStream& out, const QString& what, double value, int decimals, const QString& wanted)
{
    out << what.leftJustified(58) << QString::number(value, 'f', decimals).rightJustified(16) << "   "
        << wanted << Qt::endl;
}

/// The most of the process's memory that was in use at a time, in MB.
double peakMemory()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toDouble() / 1024;
    }
    return 0;
}

/// Runs the event loop until something is so. Returns the longest iteration in ms.
double runUntil(const std::function<bool()>& condition)
{
    QElapsedTimer waited;
    waited.start();
    double longest = 0;
    while (!condition()) {
        QElapsedTimer iteration;
        iteration.start();
        QCoreApplication::processEvents();
        longest = std::max(longest, milliseconds(iteration));
        if (waited.hasExpired(patience))
            throw std::runtime_error("a search does not end");
    }
    return longest;
}

Message recordOf(int number)
{
    Message record = Message::make(Type::Information);
    if (number % 4 == 0) {
        record = Message::make(Type::GlError);
        record.setU32(offset::glErrorCode, 0x0502);
        record.setText(offset::glErrorFunction, "glDrawElements", offset::glErrorDescription);
        record.setText(offset::glErrorDescription,
            "the array buffer " + std::to_string(number) + " is mapped, so that nothing is drawn");
    } else {
        record.setText(offset::text,
            "frame " + std::to_string(number) + ": uploaded a texture of 1024 x 1024 texels in 3 ms");
    }
    return record;
}

struct Search {
    const char* name;
    QString text;
    bool isExpression;
    double wanted; ///< Entries a second.
};

class Reader {
public:
    explicit Reader(int entries)
        : m_page(nullptr, 0, QFontDatabase::systemFont(QFontDatabase::FixedFont))
        , m_entries(entries)
    {
        auto* tabs = m_page.findChild<QTabWidget*>(QStringLiteral("tabWidget"));
        tabs->setCurrentIndex(0);
        m_page.resize(900, 600);
        m_page.show();
        for (int i = 0; i < entries; ++i) {
            m_page.receive(recordOf(i));
            if (i % 1000 == 0)
                QCoreApplication::processEvents();
        }
        runUntil([this] { return m_page.console().isComplete(); });
        m_bar = tabs->currentWidget()->findChild<FindBar*>(QStringLiteral("findBar"));
        m_edit = m_bar->findChild<QLineEdit*>(QStringLiteral("editFind"));
        m_count = m_bar->findChild<QLabel*>(QStringLiteral("lblFindCount"));
        m_expression = m_bar->findChild<QToolButton*>(QStringLiteral("btnFindExpression"));
    }

    void find(QTextStream& out, const Search& search)
    {
        const QString title = QLatin1String(search.name) + QStringLiteral(": ");
        m_expression->setChecked(search.isExpression);
        m_edit->clear();
        m_bar->open();
        QElapsedTimer time;
        time.start();
        m_edit->setText(search.text);
        const double typed = milliseconds(time);
        const double gap = runUntil(
            [this] { return !m_count->text().isEmpty() && !m_count->text().contains(QLatin1Char('%')); });
        row(out, title + QStringLiteral("entries/s"), m_entries * 1000 / milliseconds(time), 0,
            QStringLiteral(">= %1").arg(search.wanted, 0, 'f', 0));
        row(out, title + QStringLiteral("longest gap, ms"), std::max(gap, typed), 1, QStringLiteral("< 50"));
        out << "    " << m_count->text() << Qt::endl;
    }

    /// Goes through matches that are far from each other. The slowest step, until it is drawn, in ms.
    double slowestJump(int steps)
    {
        double slowest = 0;
        for (int i = 0; i < steps; ++i) {
            QElapsedTimer time;
            time.start();
            m_bar->go(i % 3 == 2 ? Findable::Direction::Backward : Findable::Direction::Forward);
            QCoreApplication::processEvents();
            m_page.findChild<QTextEdit*>(QStringLiteral("txtConsole"))->viewport()->repaint();
            slowest = std::max(slowest, milliseconds(time));
        }
        return slowest;
    }

private:
    ClientInterface m_page;
    int m_entries;
    FindBar* m_bar = nullptr;
    QLineEdit* m_edit = nullptr;
    QLabel* m_count = nullptr;
    QToolButton* m_expression = nullptr;
};

} // namespace

void measureConsole(QTextStream& out, int entries)
{
    Reader reader(entries);
    const double before = peakMemory();
    const QString rare = QString::number(entries / 2);
    for (const Search& search : {Search{"plain text, few matches", rare, false, 1e6},
             Search{"plain text, a match in each entry", QStringLiteral("e"), false, 1e6},
             Search{"expression, few matches", QStringLiteral("buffer \\d*%1\\b").arg(rare), true, 3e5},
             Search{"expression, many matches", QStringLiteral("in \\d+ ms$"), true, 3e5}})
        reader.find(out, search);
    reader.find(out, {"plain text with distance", QStringLiteral("%1 ").arg(rare.mid(1)), false, 1e6});
    row(out, QStringLiteral("jump to a match, slowest, ms"), reader.slowestJump(60), 1,
        QStringLiteral("< 100"));
    row(out, QStringLiteral("memory for the matches, MB"), peakMemory() - before, 1, QStringLiteral("<= 40"));
}

} // namespace reading
