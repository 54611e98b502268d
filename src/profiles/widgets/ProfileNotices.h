#pragma once

#include "HiddenElements.h"

#include <QObject>

#include <cstddef>
#include <vector>

class QBoxLayout;

namespace widgets {

class NoticeBar;

/// What the panel says above the trees of a profile: that it is empty, what was discarded or deleted and can
/// be brought back, and what the file has that cannot be shown.
class ProfileNotices : public QObject {
    Q_OBJECT

public:
    /// Puts the notices into the panel's layout, before the item that stands at `position`.
    ProfileNotices(QBoxLayout& layout, int position, QWidget* panel);

    void showEmpty(bool isEmpty);

    /// Names elements that the page does not show; the tool tip says why.
    void showHidden(const std::vector<HiddenElement>& elements);

    /// Offers to bring back that many changes, 0 where they cannot be counted.
    void offerDiscarded(std::size_t changes);
    /// Says that the changes of what is shown have to be saved before others are brought back.
    void refuseDiscarded();
    void hideDiscarded();

    /// Offers to bring back that many rows; says nothing for none.
    void offerDeleted(int rows);
    /// Says that the place of a deleted row is taken by another one of that name.
    void refuseDeleted(const QString& name);

Q_SIGNALS:
    void discardedWanted();
    void deletedWanted();
    void apiWanted();
    void configWanted();

private:
    NoticeBar* m_empty;
    NoticeBar* m_discarded;
    NoticeBar* m_deleted;
    NoticeBar* m_hidden;
};

} // namespace widgets
