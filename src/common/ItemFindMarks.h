#pragma once

#include "FindPattern.h"

#include <QWidget>

class QAbstractItemView;

/// Marks the cells of a view whose texts match a pattern. It lies above the cells, and lets everything but
/// its paint through.
class ItemFindMarks : public QWidget {
    Q_OBJECT

public:
    /// Marks in a view, which becomes the parent.
    explicit ItemFindMarks(QAbstractItemView* view);

    void setPattern(const FindPattern& pattern);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void followViewport();
    void mark(QPainter& painter, const QModelIndex& cell, const QRect& place) const;

    QAbstractItemView* m_view;
    FindPattern m_pattern;
};
