#pragma once

#include <QWidget>

#include <vector>

class QScrollBar;

/// Marks in a vertical scroll bar that show where something is in what the bar scrolls. The bar works as it
/// does without them.
class ScrollBarMarks : public QWidget {
    Q_OBJECT

public:
    /// Marks in a bar, which becomes the parent.
    explicit ScrollBarMarks(QScrollBar* bar);

    /// Shows marks at these places, from 0 at the start to 1 at the end.
    void setMarks(std::vector<double> places);
    std::size_t count() const { return m_places.size(); }

    /// The colour of what is found, in scroll bars and behind dark text.
    static QColor colour();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QScrollBar* m_bar;
    std::vector<double> m_places;
};
