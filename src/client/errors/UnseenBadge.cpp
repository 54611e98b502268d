#include "UnseenBadge.h"

#include "UnseenErrors.h"

#include <QLocale>
#include <QStyle>
#include <QTabBar>

namespace {

constexpr int largestNumber = 999;

} // namespace

UnseenBadge::UnseenBadge(const UnseenErrors& unseen, QTabBar& bar, int tab)
    : QLabel(&bar)
    , m_unseen(unseen)
    , m_bar(bar)
    // Beside the button that closes the tab.
    , m_side(bar.style()->styleHint(QStyle::SH_TabBar_CloseButtonPosition, nullptr, &bar) == QTabBar::LeftSide
              ? QTabBar::RightSide
              : QTabBar::LeftSide)
{
    setObjectName(QStringLiteral("lblUnseen"));
    setAlignment(Qt::AlignCenter);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
    connect(&unseen, &QObject::destroyed, this, &QObject::deleteLater);
    showOn(tab);
}

void UnseenBadge::showOn(int tab)
{
    if (tab < 0)
        return; // the tab is gone before its page
    const int sum = m_unseen.errors() + m_unseen.warnings();
    const bool isShown = m_bar.tabButton(tab, m_side) == this;
    if (sum == 0) {
        // An empty place on the tab would stay otherwise.
        if (isShown)
            m_bar.setTabButton(tab, m_side, nullptr);
        return;
    }
    const QString former = text();
    setText(sum > largestNumber ? QStringLiteral("%1+").arg(largestNumber) : QString::number(sum));
    const QLocale locale;
    setAccessibleName(tr("%1 errors and %2 warnings that you have not seen")
                          .arg(locale.toString(m_unseen.errors()), locale.toString(m_unseen.warnings())));
    if (const bool hasErrors = m_unseen.errors() > 0; m_hasErrors != hasErrors) {
        m_hasErrors = hasErrors;
        setStyleSheet(
            QStringLiteral("QLabel { background: %1; color: %2; border-radius: 4px; padding: 0 4px; }")
                .arg(hasErrors ? QStringLiteral("#b3261e") : QStringLiteral("#f2c84b"),
                    hasErrors ? QStringLiteral("white") : QStringLiteral("black")));
    }
    if (isShown && former.size() == text().size())
        return;
    adjustSize();
    if (isShown)
        m_bar.setTabButton(tab, m_side, nullptr);
    m_bar.setTabButton(tab, m_side, this);
}
