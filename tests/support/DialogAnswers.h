#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QInputDialog>
#include <QMenu>
#include <QMessageBox>
#include <QStringList>
#include <QTimer>

#include <deque>
#include <functional>

/// Answers the modal dialogs and menus that the code under test opens, in the order in which the answers were
/// queued. What nobody expects is closed and told by problems().
class DialogAnswers : public QObject {
public:
    using Answer = std::function<void(QWidget&)>;

    DialogAnswers()
    {
        connect(&m_timer, &QTimer::timeout, this, [this] { look(); });
        m_timer.setSingleShot(true);
        m_timer.start(interval);
    }

    /// The title is that of the dialog's window, empty for any; for a menu it is "menu".
    void next(const QString& title, const Answer& answer) { m_queue.push_back({title, answer}); }

    /// Presses the button with that text.
    void press(const QString& title, const QString& text)
    {
        next(title, [this, text](QWidget& dialog) {
            for (QAbstractButton* button : dialog.findChildren<QAbstractButton*>()) {
                if (button->text().remove(QLatin1Char('&')) == text)
                    return button->click();
            }
            m_problems << QStringLiteral("no button %1").arg(text);
        });
    }

    /// Enters a text, or chooses an item, in an input dialog; "" cancels it.
    void enter(const QString& title, const QString& text)
    {
        next(title, [text](QWidget& widget) {
            auto& dialog = static_cast<QInputDialog&>(widget);
            dialog.setTextValue(text);
            dialog.done(text.isEmpty() ? QDialog::Rejected : QDialog::Accepted);
        });
    }

    /// Triggers the visible entry of a menu; the texts of those that are visible go to `visible`.
    void choose(const QString& entry, QStringList* visible = nullptr)
    {
        next(QStringLiteral("menu"), [entry, visible](QWidget& widget) {
            auto& menu = static_cast<QMenu&>(widget);
            QAction* chosen = nullptr;
            for (QAction* action : menu.actions()) {
                if (visible && action->isVisible())
                    *visible << action->text();
                if (action->isVisible() && action->text() == entry)
                    chosen = action;
            }
            menu.close();
            if (chosen)
                chosen->trigger();
        });
    }

    /// What went wrong, and the titles of what was expected and never came; asking starts anew.
    QStringList problems()
    {
        QStringList found = m_problems;
        for (const Expected& expected : m_queue)
            found << QStringLiteral("never came: %1").arg(expected.title);
        m_problems.clear();
        m_queue.clear();
        return found;
    }

private:
    struct Expected {
        QString title;
        Answer answer;
    };

    static constexpr int interval = 5;

    void look()
    {
        // A timer that repeats would be silent as long as an answer is being given, which may open the next
        // dialog.
        m_timer.start(interval);
        QWidget* shown = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        const QString title = shown ? QStringLiteral("menu") : QString();
        if (!shown)
            shown = QApplication::activeModalWidget();
        if (!shown || !shown->isVisible() || shown == m_answering)
            return;
        m_answering = shown;
        const QString name = title.isEmpty() ? shown->windowTitle() : title;
        if (m_queue.empty() || (!m_queue.front().title.isEmpty() && m_queue.front().title != name)) {
            m_problems << QStringLiteral("unexpected: %1").arg(name);
        } else {
            const Expected expected = m_queue.front();
            m_queue.pop_front();
            expected.answer(*shown);
        }
        m_answering = nullptr;
        if (QApplication::activeModalWidget() == shown || QApplication::activePopupWidget() == shown)
            shown->close();
    }

    QTimer m_timer;
    std::deque<Expected> m_queue;
    QStringList m_problems;
    QWidget* m_answering = nullptr;
};
