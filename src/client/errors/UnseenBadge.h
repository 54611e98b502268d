#pragma once

#include <QLabel>
#include <QTabBar>

#include <optional>

class UnseenErrors;

/// A number on a tab that tells of errors and warnings that nobody has seen. The tab keeps its text.
class UnseenBadge : public QLabel {
    Q_OBJECT

public:
    /// For the tab of a page; both live at least as long.
    UnseenBadge(const UnseenErrors& unseen, QTabBar& bar, int tab);

    /// Puts the badge on another tab, or on the same when its number has changed.
    void showOn(int tab);

private:
    const UnseenErrors& m_unseen;
    QTabBar& m_bar;
    QTabBar::ButtonPosition m_side;
    std::optional<bool> m_hasErrors; ///< What its colours tell.
};
