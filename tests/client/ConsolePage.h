#pragma once

#include "ClientInterface.h"
#include "ConsoleOracle.h"
#include "Records.h"

#include <QCheckBox>
#include <QFontDatabase>
#include <QScrollBar>
#include <QTabWidget>
#include <QTest>
#include <QTextBlock>
#include <QTextEdit>
#include <QTextFrame>

/// A console on the screen, as the tests of the console use it.
namespace console_page {

using records::Message;

inline constexpr int live = static_cast<int>(ConsoleDocument::liveEntries);

/// A shown page with its console in front.
struct Page {
    Page()
        : page(nullptr, 0, QFontDatabase::systemFont(QFontDatabase::FixedFont))
    {
        page.findChild<QTabWidget*>(QStringLiteral("tabWidget"))->setCurrentIndex(0);
        page.resize(600, 400);
        page.show();
    }
    void receive(const QList<Message>& pattern, int count)
    {
        for (int i = 0; i < count; ++i, ++received)
            page.receive(pattern.at(received % pattern.size()));
    }
    bool comesToRest()
    {
        return QTest::qWaitFor([this] { return page.console().isComplete(); }, 60000);
    }
    QTextDocument& document() const { return *view->document(); }
    QString whyWrong() { return console_oracle::whyWrong(page.console(), document()); }
    int earlier() const { return console_oracle::earlierEntries(document()); }
    /// The looks of each kind of line, once each.
    QStringList looks() const
    {
        QStringList looks;
        for (QTextBlock block = document().begin(); block.isValid(); block = block.next()) {
            const QString kind = block.text().isEmpty() ? QString() : block.text().left(5);
            const QTextFrameFormat frame = QTextCursor(block).currentFrame()->frameFormat();
            const QString look = kind + QLatin1Char(' ') + block.blockFormat().background().color().name()
                + block.charFormat().foreground().color().name() + frame.borderBrush().color().name();
            if (!kind.isEmpty() && block != document().begin() && !looks.contains(look))
                looks.append(look);
        }
        looks.sort();
        return looks;
    }
    bool isAtEnd() const
    {
        const QScrollBar& bar = *view->verticalScrollBar();
        return bar.value() > bar.maximum() - 60;
    }
    /// The line at the top of the view.
    QString topLine() const { return view->cursorForPosition(QPoint(0, 0)).block().text(); }

    ClientInterface page;
    QTextEdit* view = page.findChild<QTextEdit*>(QStringLiteral("txtConsole"));
    QCheckBox* autoScroll = page.findChild<QCheckBox*>(QStringLiteral("chkConsoleAutoScroll"));
    int received = 0;
};

/// Lines with numbers from 0 on.
inline QList<Message> numbered(int count)
{
    QList<Message> lines;
    for (int i = 0; i < count; ++i)
        lines.append(records::text(records::Type::Information, "line " + std::to_string(i)));
    return lines;
}

} // namespace console_page
