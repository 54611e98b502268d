#pragma once

#include "LinearFind.h"

#include <QTextBlock>
#include <QTextCursor>

#include <vector>

class QPlainTextEdit;
class ScrollBarMarks;
class TextFindMarks;

/// Finds text in a view of plain text.
class TextFind : public LinearFind {
    Q_OBJECT

public:
    /// Looks in a view, which becomes the parent.
    explicit TextFind(QPlainTextEdit* view);

    QString selectedText() const override;
    QWidget* view() const override;

protected:
    void begin() override;
    bool search() override;
    std::size_t matchCount() const override { return m_matches.size(); }
    std::optional<std::size_t> firstAtReader() const override;
    bool followReader(Direction direction) override;
    double searchedPart() const override;
    void show(std::size_t match) override;
    void mark() override;

private:
    struct Match {
        int start;
        int length;
    };

    QPlainTextEdit* m_view;
    TextFindMarks* m_marks;
    ScrollBarMarks* m_barMarks;
    std::vector<Match> m_matches;
    QTextBlock m_block; ///< That is searched next.
    int m_readerPosition = 0;
    QTextCursor m_seenCursor; ///< Of the view, when the reader's place was last taken.
};
