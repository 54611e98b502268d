#include "TextFindMarks.h"

#include "ScrollBarMarks.h"

#include <QEvent>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextBlock>

namespace {

/// Milliseconds between two times of marking while the text changes or is scrolled.
constexpr int interval = 30;
/// Marks that are drawn at once at most.
constexpr qsizetype mostMarks = 2000;
/// Blocks before and behind those that the view is known to show.
constexpr int moreBlocks = 4;

} // namespace

TextFindMarks::TextFindMarks(QTextEdit* view)
    : QObject(view)
    , m_view(view)
{
    setUp(view);
}

TextFindMarks::TextFindMarks(QPlainTextEdit* view)
    : QObject(view)
    , m_view(view)
{
    setUp(view);
}

template <typename View> void TextFindMarks::setUp(View* view)
{
    m_cursorAt = [view](const QPoint& place) {
        return view->cursorForPosition(place);
    };
    m_setMarks = [view](const QList<QTextEdit::ExtraSelection>& marks) {
        view->setExtraSelections(marks);
    };
    m_timer.setSingleShot(true);
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &TextFindMarks::mark);
    const auto markSoon = [this] {
        if (!m_pattern.isEmpty() && !m_timer.isActive())
            m_timer.start();
    };
    connect(view->verticalScrollBar(), &QAbstractSlider::valueChanged, this, markSoon);
    connect(view->document(), &QTextDocument::contentsChanged, this, markSoon);
    view->viewport()->installEventFilter(this);
}

void TextFindMarks::setPattern(const FindPattern& pattern)
{
    m_pattern = pattern;
    mark();
}

bool TextFindMarks::eventFilter(QObject* watched, QEvent* event)
{
    if ((event->type() == QEvent::Resize || event->type() == QEvent::Show) && !m_pattern.isEmpty())
        m_timer.start();
    return QObject::eventFilter(watched, event);
}

void TextFindMarks::mark()
{
    QList<QTextEdit::ExtraSelection> marks;
    if (!m_pattern.isEmpty() && m_view->isVisible()) {
        // In the middle of the view, as beside a frame there is only its start.
        const QRect shown = m_view->viewport()->rect();
        QTextBlock block = m_cursorAt({shown.center().x(), shown.top()}).block();
        QTextBlock last = m_cursorAt({shown.center().x(), shown.bottom()}).block();
        for (int i = 0; i < moreBlocks; ++i) {
            block = block.previous().isValid() ? block.previous() : block;
            last = last.next().isValid() ? last.next() : last;
        }
        QTextEdit::ExtraSelection mark;
        mark.format.setBackground(ScrollBarMarks::colour());
        mark.format.setForeground(Qt::black);
        for (; block.isValid() && !(last < block) && marks.size() < mostMarks; block = block.next()) {
            const QString text = block.text();
            for (auto match = m_pattern.find(text); match.start >= 0 && marks.size() < mostMarks;
                 match = m_pattern.find(text, match.start + match.length)) {
                mark.cursor = QTextCursor(block);
                mark.cursor.setPosition(block.position() + static_cast<int>(match.start));
                mark.cursor.setPosition(
                    mark.cursor.position() + static_cast<int>(match.length), QTextCursor::KeepAnchor);
                marks.append(mark);
            }
        }
    }
    m_setMarks(marks);
}
