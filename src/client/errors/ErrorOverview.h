#pragma once

#include "ErrorHistogram.h"

#include <QTimer>
#include <QWidget>

class ErrorListFilterProxyModel;
class ErrorListModel;

/// Errors and warnings over frames, as a strip of bars that a click or the keys choose from. Higher bars have
/// more of them, by the logarithm, so that a single one can be seen beside a burst. Rows that the list hides
/// are faint, and cannot be chosen.
class ErrorOverview : public QWidget {
    Q_OBJECT

public:
    explicit ErrorOverview(QWidget* parent = nullptr);

    /// What the list behind a filter reports; both live at least as long.
    void setErrors(const ErrorListFilterProxyModel* shown);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The frames of a bar that was chosen.
    void framesChosen(int first, int last);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    /// A bar: the frames that it is for.
    struct Bar {
        std::int64_t first = 0;
        std::int64_t last = 0;
    };

    void count(int first, int last);
    void recount();
    void showCounts();
    int barCount() const;
    Bar bar(int number) const;
    ErrorHistogram::Bin countsOf(int number) const;
    ErrorHistogram::Bin shownCountsOf(int number) const;
    void drawBar(
        QPainter& painter, const QRect& place, const ErrorHistogram::Bin& counts, bool isFaint) const;
    int barAt(int x) const;
    int nearestFilled(int number) const;
    QString toolTipOf(int number) const;
    void choose(int number);

    const ErrorListFilterProxyModel* m_shown = nullptr;
    const ErrorListModel* m_errors = nullptr;
    ErrorHistogram m_histogram;
    QTimer m_pause; ///< Between two repaints while rows arrive.
    int m_current = -1; ///< The bar that the keys are on.
};
