#include "FindBar.h"

#include "ElidedLabel.h"
#include "Theme.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QToolButton>

#include <algorithm>

namespace {

/// Of a selection that becomes the text. A longer one is not what somebody looks for.
constexpr qsizetype longestSelection = 200;

} // namespace

FindBar::FindBar(Findable* target, QWidget* page)
    : QFrame(page)
    , m_target(target)
    , m_edit(new QLineEdit(this))
    , m_count(new ElidedLabel(this))
{
    setObjectName(QStringLiteral("findBar"));
    setFrameShape(StyledPanel);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    auto* layout = new QHBoxLayout(this);
    constexpr int margin = 3;
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(margin);
    auto* label = new QLabel(tr("Find:"), this);
    label->setBuddy(m_edit);
    layout->addWidget(label);
    m_edit->setObjectName(QStringLiteral("editFind"));
    m_edit->setAccessibleName(tr("Find"));
    m_edit->setClearButtonEnabled(true);
    m_edit->setMinimumWidth(fontMetrics().averageCharWidth() * 12);
    layout->addWidget(m_edit, 1);
    addSwitches(layout);
    layout->addSpacing(margin);
    m_count->setObjectName(QStringLiteral("lblFindCount"));
    m_count->setAccessibleName(tr("Matches"));
    // The numbers grow without moving the buttons.
    m_count->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("1,000 of 1,000")));
    layout->addWidget(m_count);
    QToolButton* closing = addButton("btnFindClose", QStringLiteral("\u00D7"), tr("Close (Esc)"));
    closing->setAutoRaise(true);
    layout->addWidget(closing);
    connect(m_edit, &QLineEdit::textChanged, this, &FindBar::searchAgain);
    connect(closing, &QToolButton::clicked, this, &FindBar::close);
    connect(target, &Findable::stateChanged, this, &FindBar::showState);
    hide();
}

void FindBar::addSwitches(QHBoxLayout* layout)
{
    m_previous = addButton("btnFindPrevious", QStringLiteral("\u25B2"), tr("Previous match (Shift+F3)"));
    m_next = addButton("btnFindNext", QStringLiteral("\u25BC"), tr("Next match (F3)"));
    connect(m_previous, &QToolButton::clicked, this, [this] { go(Findable::Direction::Backward); });
    connect(m_next, &QToolButton::clicked, this, [this] { go(Findable::Direction::Forward); });
    m_case = addButton("btnFindCase", tr("Aa"), tr("Tell capital letters from small ones"));
    m_words = addButton("btnFindWords", tr("Word"), tr("Find whole words only"));
    m_expression =
        addButton("btnFindExpression", QStringLiteral(".*"), tr("The text is a regular expression"));
    for (QToolButton* button : {m_previous, m_next, m_case, m_words, m_expression})
        layout->addWidget(button);
    for (QToolButton* button : {m_case, m_words, m_expression}) {
        button->setCheckable(true);
        connect(button, &QToolButton::toggled, this, &FindBar::searchAgain);
    }
}

QToolButton* FindBar::addButton(const char* objectName, const QString& text, const QString& toolTip)
{
    auto* button = new QToolButton(this);
    button->setObjectName(QLatin1String(objectName));
    button->setText(text);
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip);
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

FindBar* FindBar::inFront(const QWidget* window)
{
    const QList<FindBar*> bars = window->findChildren<FindBar*>(QStringLiteral("findBar"));
    const auto inFront = std::find_if(bars.begin(), bars.end(), [](const FindBar* bar) {
        return bar->parentWidget()->isVisible() && bar->parentWidget()->isEnabled();
    });
    return inFront == bars.end() ? nullptr : *inFront;
}

void FindBar::open()
{
    const QString selected = m_target->selectedText();
    const bool wasHidden = isHidden();
    if (wasHidden)
        m_focusBefore = QApplication::focusWidget();
    show();
    // Else the view would get smaller only after it has gone to the first match, and keep what it showed
    // before.
    if (QLayout* layout = parentWidget()->layout())
        layout->activate();
    const bool isNew = !selected.isEmpty() && selected.size() <= longestSelection;
    if (isNew && selected != m_edit->text())
        m_edit->setText(selected);
    else if (wasHidden)
        searchAgain();
    m_edit->setFocus();
    m_edit->selectAll();
}

void FindBar::close()
{
    QWidget* view = m_target->view();
    QWidget* next = view && view->isVisible() ? view : m_focusBefore.data();
    hide();
    m_target->stop();
    if (next)
        next->setFocus();
}

void FindBar::go(Findable::Direction direction)
{
    if (isHidden() || m_edit->text().isEmpty())
        open();
    else if (!m_pattern.isEmpty())
        m_target->go(direction);
}

void FindBar::putBehind(QWidget* widget)
{
    QWidget* former = widget;
    for (QWidget* part : findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        if (!(part->focusPolicy() & Qt::TabFocus))
            continue;
        setTabOrder(former, part);
        former = part;
    }
}

FindQuery FindBar::query() const
{
    return {m_edit->text(), m_case->isChecked(), m_words->isChecked(), m_expression->isChecked()};
}

void FindBar::searchAgain()
{
    if (isHidden())
        return;
    m_pattern = FindPattern(query());
    m_target->start(m_pattern);
    showState();
}

void FindBar::showState()
{
    QString text;
    QString toolTip;
    if (!m_pattern.error().isEmpty()) {
        text = tr("Character %1: %2").arg(m_pattern.errorPlace() + 1).arg(m_pattern.error());
        toolTip = tr("The regular expression is broken: %1").arg(text);
    } else if (!m_pattern.isEmpty()) {
        text = stateText(m_target->state());
        toolTip = text;
    }
    m_count->setText(text);
    m_count->setToolTip(toolTip.toHtmlEscaped());
    const bool hasFault = !m_pattern.error().isEmpty()
        || (!m_pattern.isEmpty() && m_target->state().total == 0 && m_target->state().percent == 100);
    QPalette colours = palette();
    if (hasFault)
        colours.setColor(QPalette::WindowText, theme::faultColor(colours));
    m_count->setPalette(colours);
    for (QToolButton* button : {m_previous, m_next})
        button->setEnabled(!m_pattern.isEmpty());
}

QString FindBar::stateText(const Findable::State& state) const
{
    const QLocale locale;
    QString total = locale.toString(static_cast<qulonglong>(state.total));
    if (state.isLimited)
        total += QLatin1Char('+');
    QString text;
    if (state.total == 0)
        text = state.percent < 100 ? QString() : tr("No matches");
    else if (state.current > 0)
        text = tr("%1 of %2").arg(locale.toString(static_cast<qulonglong>(state.current)), total);
    else
        text = state.total == 1 ? tr("1 match") : tr("%1 matches").arg(total);
    const auto add = [&text](const QString& more) {
        text += (text.isEmpty() ? QString() : QStringLiteral(" \u2013 ")) + more;
    };
    if (state.percent < 100)
        add(tr("searching, %1 %").arg(state.percent));
    else if (state.hasGivenUp)
        add(tr("some lines are too hard for the expression"));
    if (state.wrapped == Findable::Wrapped::ToStart)
        add(tr("continued from the start"));
    else if (state.wrapped == Findable::Wrapped::ToEnd)
        add(tr("continued from the end"));
    return text;
}

void FindBar::changeEvent(QEvent* event)
{
    QFrame::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        showState();
}

void FindBar::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) && m_edit->hasFocus())
        go(event->modifiers().testFlag(Qt::ShiftModifier) ? Findable::Direction::Backward
                                                          : Findable::Direction::Forward);
    else
        QFrame::keyPressEvent(event);
}
