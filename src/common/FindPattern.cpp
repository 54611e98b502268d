#include "FindPattern.h"

#include <algorithm>

namespace {

/// Steps that an expression may take in a line. Beyond that it would hold the window up.
constexpr const char* stepLimit = "(*LIMIT_MATCH=100000)";

/// Characters beyond ASCII whose other case is a letter of ASCII: the sign of Kelvin and the long s.
constexpr char16_t kelvin = 0x212A;
constexpr char16_t longS = 0x017F;

bool isAscii(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar character) { return character.unicode() < 0x80; });
}

bool isAsciiBytes(std::string_view bytes)
{
    // Without a branch in each step, so that many bytes are looked at in one.
    unsigned char all = 0;
    for (const char byte : bytes)
        all |= static_cast<unsigned char>(byte);
    return all < 0x80;
}

char lower(char byte)
{
    return static_cast<char>(byte + (byte >= 'A' && byte <= 'Z' ? 'a' - 'A' : 0));
}

bool isWordByte(char byte)
{
    return (byte >= '0' && byte <= '9') || (lower(byte) >= 'a' && lower(byte) <= 'z') || byte == '_';
}

bool isWordCharacter(QChar character)
{
    return character.isLetterOrNumber() || character == QLatin1Char('_');
}

template <typename Text, typename IsWord>
bool isWholeWord(const Text& text, std::size_t start, std::size_t length, IsWord isWord)
{
    const std::size_t end = start + length;
    const auto at = [&text](std::size_t place) {
        return text[static_cast<typename Text::size_type>(place)];
    };
    return (start == 0 || !isWord(at(start - 1)))
        && (end == static_cast<std::size_t>(text.size()) || !isWord(at(end)));
}

} // namespace

FindPattern::FindPattern(const FindQuery& query)
    : m_query(query)
{
    if (query.isExpression) {
        const auto options =
            query.matchCase ? QRegularExpression::NoPatternOption : QRegularExpression::CaseInsensitiveOption;
        const QRegularExpression alone(query.text, options);
        if (!alone.isValid()) {
            m_error = alone.errorString();
            m_errorPlace = alone.patternErrorOffset();
            return;
        }
        const QString pattern =
            query.wholeWords ? QStringLiteral("\\b(?:%1)\\b").arg(query.text) : query.text;
        m_expression = QRegularExpression(QLatin1String(stepLimit) + pattern, options);
        if (!m_expression.isValid())
            m_expression = alone;
        m_expression.optimize();
        return;
    }
    m_isAscii = isAscii(query.text);
    m_bytes = query.text.toStdString();
    if (!query.matchCase)
        std::transform(m_bytes.begin(), m_bytes.end(), m_bytes.begin(), lower);
    m_matchesAscii = m_isAscii
        || (!query.matchCase && (query.text.contains(QChar(kelvin)) || query.text.contains(QChar(longS))));
}

FindPattern::Match FindPattern::find(QStringView line, qsizetype from) const
{
    if (isEmpty())
        return {};
    return m_query.isExpression ? findExpression(line, from) : findText(line, from);
}

FindPattern::Match FindPattern::findText(QStringView line, qsizetype from) const
{
    const Qt::CaseSensitivity sensitivity = m_query.matchCase ? Qt::CaseSensitive : Qt::CaseInsensitive;
    const qsizetype length = m_query.text.size();
    for (qsizetype at = line.indexOf(m_query.text, from, sensitivity); at >= 0;
         at = line.indexOf(m_query.text, at + 1, sensitivity)) {
        if (!m_query.wholeWords
            || isWholeWord(
                line, static_cast<std::size_t>(at), static_cast<std::size_t>(length), isWordCharacter))
            return {at, length};
    }
    return {};
}

FindPattern::Match FindPattern::findExpression(QStringView line, qsizetype from) const
{
    while (from <= line.size()) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
        const QRegularExpressionMatch match = m_expression.matchView(line, from);
#else
        const QRegularExpressionMatch match = m_expression.match(line, from);
#endif
        if (!match.isValid())
            m_hasGivenUp = true;
        if (!match.hasMatch())
            break;
        if (match.capturedLength() > 0)
            return {match.capturedStart(), match.capturedLength()};
        from = match.capturedStart() + 1;
    }
    return {};
}

std::size_t FindPattern::count(std::string_view lines) const
{
    if (isEmpty())
        return 0;
    if (!isAsciiBytes(lines))
        return countCharacters(QString::fromUtf8(lines.data(), static_cast<qsizetype>(lines.size())));
    if (!m_query.isExpression && !m_matchesAscii)
        return 0;
    if (m_query.isExpression || !m_isAscii)
        return countCharacters(QString::fromLatin1(lines.data(), static_cast<qsizetype>(lines.size())));
    if (m_query.matchCase)
        return countBytes(lines);
    m_lowerCase.resize(lines.size());
    std::transform(lines.begin(), lines.end(), m_lowerCase.begin(), lower);
    return countBytes(m_lowerCase);
}

std::size_t FindPattern::countBytes(std::string_view lines) const
{
    std::size_t count = 0;
    for (std::size_t at = lines.find(m_bytes); at != std::string_view::npos;) {
        const bool counts = !m_query.wholeWords || isWholeWord(lines, at, m_bytes.size(), isWordByte);
        count += counts ? 1 : 0;
        at = lines.find(m_bytes, at + (counts ? m_bytes.size() : 1));
    }
    return count;
}

std::size_t FindPattern::countCharacters(QStringView lines) const
{
    std::size_t count = 0;
    qsizetype start = 0;
    while (start < lines.size()) {
        qsizetype end = lines.indexOf(QLatin1Char('\n'), start);
        if (end < 0)
            end = lines.size();
        const QStringView line = lines.sliced(start, end - start);
        for (Match match = find(line); match.start >= 0; match = find(line, match.start + match.length))
            ++count;
        start = end + 1;
    }
    return count;
}
