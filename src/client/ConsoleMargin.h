#pragma once

#include "ConsoleDocument.h"

#include <QWidget>

class ConsoleHistory;
class QTextEdit;

/// A column beside the text of a console: when each entry arrived, its frame, and how often it was repeated.
class ConsoleMargin : public QWidget {
    Q_OBJECT

public:
    /// The view and the history of its console must live as long. The margin has to stand right beside the
    /// view.
    ConsoleMargin(const QTextEdit* view, const ConsoleHistory& history, QWidget* parent);

    void setStampsShown(bool shown);
    void setRepeatsShown(bool shown);

    QSize sizeHint() const override;

    /// "12:34:56.789", in local time.
    static QString timeText(std::int64_t time);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void showIfUseful();
    void drawEntry(QPainter& painter, const ConsoleDocument::Shown& entry, int y) const;
    int repeatsWidth() const;
    int timeWidth() const;
    int frameWidth() const;

    const QTextEdit* m_view;
    const ConsoleHistory& m_history;
    bool m_showsStamps = false;
    bool m_showsRepeats = false;
};
