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
    void setGroupsShown(bool shown);

    QSize sizeHint() const override;
    /// Rather than widen the window for it, a large font is cut.
    QSize minimumSizeHint() const override { return {0, 0}; }

    /// "12:34:56.789", in local time.
    static QString timeText(std::int64_t time);

Q_SIGNALS:
    /// The reader wants a group, which an entry opens, to be folded or unfolded.
    void groupClicked(std::uint64_t serial);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void showIfUseful();
    int offset() const;
    QString foldText(const ConsoleDocument::Shown& entry) const;
    void makeRoomFor(const ConsoleDocument::Shown& entry);
    void drawEntry(QPainter& painter, const ConsoleDocument::Shown& entry, int y) const;
    int foldWidth() const;
    int timeWidth() const;
    int frameWidth() const;

    const QTextEdit* m_view;
    const ConsoleHistory& m_history;
    /// The longest texts that there is room for. Both grow with what is shown.
    QString m_widestFold = QStringLiteral("\u00D7 100,000");
    QString m_widestFrame = QStringLiteral("100000");
    bool m_showsStamps = false;
    bool m_showsRepeats = false;
    bool m_showsGroups = false;
};
