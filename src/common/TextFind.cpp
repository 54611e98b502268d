#include "TextFind.h"

#include "ScrollBarMarks.h"
#include "TextFindMarks.h"

#include <QElapsedTimer>
#include <QPlainTextEdit>
#include <QScrollBar>

#include <algorithm>
#include <utility>

TextFind::TextFind(QPlainTextEdit* view)
    : LinearFind(view)
    , m_view(view)
    , m_marks(new TextFindMarks(view))
    , m_barMarks(new ScrollBarMarks(view->verticalScrollBar()))
{
    connect(view->document(), &QTextDocument::contentsChanged, this, [this] {
        m_block = QTextBlock();
        restartSoon();
    });
}

QString TextFind::selectedText() const
{
    const QString text = m_view->textCursor().selectedText();
    return text.contains(QChar::ParagraphSeparator) ? QString() : text;
}

QWidget* TextFind::view() const
{
    return m_view;
}

void TextFind::begin()
{
    m_matches.clear();
    m_block = m_view->document()->begin();
    m_seenCursor = m_view->textCursor();
    m_readerPosition = m_seenCursor.selectionStart();
}

bool TextFind::followReader(Direction direction)
{
    const QTextCursor cursor = m_view->textCursor();
    const bool hasMoved =
        cursor.position() != m_seenCursor.position() || cursor.anchor() != m_seenCursor.anchor();
    if (hasMoved)
        m_readerPosition = direction == Direction::Forward ? cursor.selectionEnd() : cursor.selectionStart();
    m_seenCursor = cursor;
    return hasMoved;
}

bool TextFind::search()
{
    QElapsedTimer time;
    time.start();
    while (m_block.isValid() && !isOver(time)) {
        const QString text = m_block.text();
        for (FindPattern::Match match = pattern().find(text); match.start >= 0;
             match = pattern().find(text, match.start + match.length))
            m_matches.push_back(
                {m_block.position() + static_cast<int>(match.start), static_cast<int>(match.length)});
        m_block = m_block.next();
    }
    return m_block.isValid();
}

std::optional<std::size_t> TextFind::firstAtReader() const
{
    const auto first = std::find_if(m_matches.begin(), m_matches.end(),
        [this](const Match& match) { return match.start >= m_readerPosition; });
    if (first == m_matches.end() && m_block.isValid())
        return {};
    return static_cast<std::size_t>(first - m_matches.begin());
}

double TextFind::searchedPart() const
{
    return static_cast<double>(m_block.isValid() ? m_block.blockNumber() : 0)
        / m_view->document()->blockCount();
}

void TextFind::show(std::size_t match)
{
    QTextCursor cursor(m_view->document());
    cursor.setPosition(m_matches[match].start);
    cursor.setPosition(m_matches[match].start + m_matches[match].length, QTextCursor::KeepAnchor);
    m_view->setTextCursor(cursor);
    m_seenCursor = cursor;
}

void TextFind::mark()
{
    m_marks->setPattern(pattern());
    std::vector<double> places;
    for (const Match& match : m_matches)
        places.push_back(static_cast<double>(m_view->document()->findBlock(match.start).blockNumber())
            / m_view->document()->blockCount());
    m_barMarks->setMarks(std::move(places));
}
