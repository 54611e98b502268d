#include "ErrorFilterParser.h"

#include <QStringList>

#include <limits>

namespace {

/// Before each expression: steps after which the library gives up on a text, some milliseconds at most.
const QString stepLimit = QStringLiteral("(*LIMIT_MATCH=20000)");

constexpr qint32 lastFrame = std::numeric_limits<qint32>::max();

bool isFieldName(const QString& text)
{
    return text == QLatin1String("fn") || text == QLatin1String("code") || text == QLatin1String("frame")
        || text == QLatin1String("sev");
}

/// Words such as "Call:", "http://x" and "a::b" are words and no fields.
bool looksLikeField(const QString& name, QStringView rest)
{
    if (name.isEmpty() || rest.isEmpty() || rest.at(0).isSpace() || rest.at(0) == QLatin1Char(':')
        || rest.at(0) == QLatin1Char('/'))
        return false;
    for (const QChar letter : name) {
        if (letter < QLatin1Char('a') || letter > QLatin1Char('z'))
            return false;
    }
    return true;
}

/// A number of a frame; an empty text stands for the one that is given.
bool toFrame(const QString& text, qint32 whenEmpty, qint32& frame)
{
    if (text.isEmpty()) {
        frame = whenEmpty;
        return true;
    }
    bool isNumber = text.at(0).isDigit();
    frame = isNumber ? text.toInt(&isNumber) : 0;
    return isNumber;
}

} // namespace

std::optional<ErrorFilter> ErrorFilterParser::parse()
{
    m_at = 0;
    if (m_text.size() > longestText) {
        fail(tr("A filter has %1 letters at most.").arg(longestText), longestText,
            m_text.size() - longestText);
        return std::nullopt;
    }
    if (m_text.trimmed().isEmpty())
        return ErrorFilter();
    std::vector<ErrorFilter::Alternative> alternatives;
    do {
        if (!readAlternative(alternatives.emplace_back()))
            return std::nullopt;
    } while (m_at++ < m_text.size()); // behind a bar
    return ErrorFilter(std::move(alternatives));
}

/// Up to a bar or the end.
bool ErrorFilterParser::readAlternative(ErrorFilter::Alternative& alternative)
{
    const qsizetype start = m_at;
    skipSpaces();
    while (!isAtEnd() && letter() != QLatin1Char('|')) {
        if (!readCondition(alternative.emplace_back()))
            return false;
        skipSpaces();
    }
    if (!alternative.empty())
        return true;
    if (!isAtEnd())
        return fail(tr("Something must stand before \"|\"."), m_at, 1);
    return fail(tr("Something must stand behind \"|\"."), start - 1, 1);
}

bool ErrorFilterParser::readCondition(ErrorFilter::Condition& condition)
{
    const qsizetype start = m_at;
    if (letter() == QLatin1Char('-')) {
        condition.isNegated = true;
        ++m_at;
        if (isAtEnd() || letter().isSpace() || letter() == QLatin1Char('|'))
            return fail(tr("Something must stand behind \"-\". For the sign itself write \"-\" in quotes."),
                start, 1);
    }
    if (letter() == QLatin1Char('/'))
        return readExpression(condition);
    Value value;
    if (!readValue(value, true))
        return false;
    if (!value.isPhrase && !isAtEnd() && letter() == QLatin1Char(':')) {
        ++m_at;
        if (isFieldName(value.text) || looksLikeField(value.text, QStringView(m_text).mid(m_at)))
            return readField(value, condition);
        // The colon belongs to the word.
        m_at = value.position;
        if (!readValue(value, false))
            return false;
    }
    condition.what = ErrorFilter::Contains{TextSearch(value.text)};
    return true;
}

bool ErrorFilterParser::readExpression(ErrorFilter::Condition& condition)
{
    const qsizetype start = m_at++;
    QString pattern;
    while (!isAtEnd() && letter() != QLatin1Char('/')) {
        if (letter() == QLatin1Char('\\') && m_at + 1 < m_text.size())
            pattern += m_text.at(m_at++); // also before a slash: an escaped slash is one
        pattern += m_text.at(m_at++);
    }
    if (isAtEnd())
        return fail(tr("The expression has no \"/\" at its end."), start, m_text.size() - start);
    ++m_at;
    QRegularExpression::PatternOptions options = QRegularExpression::DontCaptureOption;
    if (!isAtEnd() && letter() == QLatin1Char('i')) {
        options |= QRegularExpression::CaseInsensitiveOption;
        ++m_at;
    }
    if (!isAtEnd() && !letter().isSpace() && letter() != QLatin1Char('|'))
        return fail(
            tr("A space must stand behind an expression. A slash in it is written \"\\/\"."), m_at, 1);
    if (pattern.isEmpty())
        return fail(tr("The expression between the slashes is empty."), start, 2);
    QRegularExpression expression(stepLimit + pattern, options);
    if (!expression.isValid()) {
        const qsizetype offset = expression.patternErrorOffset() - stepLimit.size();
        return fail(tr("Not a regular expression: %1.").arg(expression.errorString()),
            start + 1 + qBound(qsizetype(0), offset, pattern.size()), 1);
    }
    expression.optimize();
    condition.what = ErrorFilter::Matches{expression};
    return true;
}

bool ErrorFilterParser::readField(const Value& name, ErrorFilter::Condition& condition)
{
    if (!isFieldName(name.text))
        return fail(
            tr("There is no field \"%1\": fields are fn, code, frame and sev. For a text with a colon "
               "write quotes around it.")
                .arg(name.text),
            name.position, name.length);
    Value value;
    value.position = m_at;
    if (!isAtEnd() && !letter().isSpace() && letter() != QLatin1Char('|') && !readValue(value, false))
        return false;
    if (value.text.isEmpty())
        return fail(
            tr("Something must stand behind \"%1:\".").arg(name.text), name.position, m_at - name.position);
    if (name.text == QLatin1String("frame"))
        return readFrames(value, condition);
    if (name.text == QLatin1String("sev"))
        return readSeverity(value, condition);
    std::string pattern = value.text.toStdString();
    for (char& byte : pattern)
        byte = foldCase(byte);
    const bool isCode = name.text == QLatin1String("code");
    condition.what =
        ErrorFilter::Named{isCode ? error_list::CodeColumn : error_list::FunctionColumn, std::move(pattern)};
    return true;
}

bool ErrorFilterParser::readFrames(const Value& value, ErrorFilter::Condition& condition)
{
    ErrorFilter::InFrames frames{0, 0, false};
    if (value.text == QLatin1String("none")) {
        frames.isNone = true;
        condition.what = frames;
        return true;
    }
    const qsizetype dots = value.text.indexOf(QLatin1String(".."));
    const bool isFrames = dots < 0 ? toFrame(value.text, 0, frames.first)
                                   : toFrame(value.text.left(dots), 0, frames.first)
            && toFrame(value.text.mid(dots + 2), lastFrame, frames.last);
    if (!isFrames)
        return fail(tr("Not a frame: write frame:10, frame:10..90, frame:10.., frame:..90 or frame:none."),
            value.position, value.length);
    if (dots < 0)
        frames.last = frames.first;
    if (frames.last < frames.first)
        return fail(tr("The last frame is before the first one."), value.position, value.length);
    condition.what = frames;
    return true;
}

bool ErrorFilterParser::readSeverity(const Value& value, ErrorFilter::Condition& condition)
{
    if (value.text == QLatin1String("error"))
        condition.what = ErrorFilter::OfSeverity{error_list::SeverityError};
    else if (value.text == QLatin1String("warning"))
        condition.what = ErrorFilter::OfSeverity{error_list::SeverityWarning};
    else
        return fail(tr("Not a severity: write sev:error or sev:warning."), value.position, value.length);
    return true;
}

bool ErrorFilterParser::readValue(Value& value, bool endsAtColon)
{
    value = Value();
    value.position = m_at;
    if (!isAtEnd() && letter() == QLatin1Char('"'))
        return readPhrase(value);
    while (!isAtEnd() && !letter().isSpace() && letter() != QLatin1Char('|')
        && !(endsAtColon && letter() == QLatin1Char(':')))
        value.text += m_text.at(m_at++);
    value.length = m_at - value.position;
    return true;
}

bool ErrorFilterParser::readPhrase(Value& value)
{
    value.isPhrase = true;
    ++m_at;
    while (!isAtEnd() && letter() != QLatin1Char('"')) {
        if (letter() == QLatin1Char('\\') && m_at + 1 < m_text.size()
            && (m_text.at(m_at + 1) == QLatin1Char('"') || m_text.at(m_at + 1) == QLatin1Char('\\')))
            ++m_at;
        value.text += m_text.at(m_at++);
    }
    if (isAtEnd())
        return fail(tr("The quotes are not closed."), value.position, m_text.size() - value.position);
    ++m_at;
    value.length = m_at - value.position;
    if (value.text.isEmpty())
        return fail(tr("There is nothing between the quotes."), value.position, value.length);
    return true;
}

void ErrorFilterParser::skipSpaces()
{
    while (!isAtEnd() && letter().isSpace())
        ++m_at;
}

bool ErrorFilterParser::fail(const QString& message, qsizetype position, qsizetype length)
{
    m_fault = {message, position, length};
    return false;
}
