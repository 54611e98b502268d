#include "ErrorFilterCompleter.h"

#include "ErrorListModel.h"

#include <QAbstractItemView>
#include <QLineEdit>
#include <QScrollBar>
#include <QStringListModel>

#include <algorithm>
#include <set>

using namespace error_list;

namespace {

/// Rows whose names are offered, and names of each kind.
constexpr int newestRows = 50'000;
constexpr std::size_t mostNames = 500;

bool isPopupKeyword(const QString& word)
{
    return word.startsWith(QLatin1String("fn:")) || word.startsWith(QLatin1String("code:"))
        || word.startsWith(QLatin1String("sev:"));
}

} // namespace

ErrorFilterCompleter::ErrorFilterCompleter(QLineEdit* edit)
    : QCompleter(edit)
    , m_edit(edit)
    , m_words(new QStringListModel(this))
{
    setModel(m_words);
    setWidget(edit);
    setCaseSensitivity(Qt::CaseInsensitive);
    connect(edit, &QLineEdit::textEdited, this, [this] { offerForWord(false); });
    connect(this, qOverload<const QString&>(&QCompleter::activated), this, &ErrorFilterCompleter::put);
}

ErrorFilterCompleter::Word ErrorFilterCompleter::word() const
{
    const QString text = m_edit->text();
    Word word{m_edit->cursorPosition(), m_edit->cursorPosition()};
    const auto isBorder = [&text](qsizetype at) {
        return text.at(at).isSpace() || text.at(at) == QLatin1Char('|');
    };
    while (word.start > 0 && !isBorder(word.start - 1))
        --word.start;
    while (word.end < text.size() && !isBorder(word.end))
        ++word.end;
    if (word.start < word.end && text.at(word.start) == QLatin1Char('-'))
        ++word.start;
    return word;
}

void ErrorFilterCompleter::offer()
{
    offerForWord(true);
}

void ErrorFilterCompleter::offerForWord(bool isAsked)
{
    const Word at = word();
    const QString start = m_edit->text().mid(at.start, m_edit->cursorPosition() - at.start);
    // Unasked, only a field brings the list up: most words are to be found in descriptions.
    if (!isAsked && !isPopupKeyword(start)) {
        popup()->hide();
        return;
    }
    fill();
    setCompletionPrefix(start);
    if (completionCount() == 0 || (completionCount() == 1 && currentCompletion() == start)) {
        popup()->hide();
        return;
    }
    QRect place = m_edit->rect();
    place.setWidth(std::min(
        place.width(), popup()->sizeHintForColumn(0) + popup()->verticalScrollBar()->sizeHint().width() + 8));
    complete(place);
}

void ErrorFilterCompleter::fill()
{
    const int count = m_errors ? m_errors->rowCount() : 0;
    if (m_filledFor == count)
        return;
    m_filledFor = count;
    QStringList words = {
        QStringLiteral("frame:"), QStringLiteral("sev:error"), QStringLiteral("sev:warning")};
    for (const Column column : {CodeColumn, FunctionColumn}) {
        std::set<TextPool::Reference> seen;
        std::set<std::string> names;
        for (int row = count - 1; row >= std::max(0, count - newestRows) && names.size() < mostNames; --row) {
            if (!seen.insert(m_errors->textNumber(row, column)).second)
                continue;
            const Row facts = m_errors->row(row);
            names.emplace(column == CodeColumn ? facts.code : facts.function);
        }
        names.erase(std::string());
        const QString field = column == CodeColumn ? QStringLiteral("code:") : QStringLiteral("fn:");
        words.append(field);
        for (const std::string& name : names) {
            // A name with a space would be taken for several words.
            const QString text = QString::fromStdString(name);
            words.append(field
                + (text.contains(QLatin1Char(' ')) ? QLatin1Char('"') + text + QLatin1Char('"') : text));
        }
    }
    words.sort();
    m_words->setStringList(words);
}

void ErrorFilterCompleter::put(const QString& completion)
{
    const Word at = word();
    const QString text = m_edit->text();
    m_edit->setText(text.left(at.start) + completion + text.mid(at.end));
    m_edit->setCursorPosition(static_cast<int>(at.start + completion.size()));
}
