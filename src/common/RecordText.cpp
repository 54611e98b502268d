#include "RecordText.h"

namespace record_text {

namespace {

constexpr char16_t controlPictures = 0x2400; ///< U+2400 + n depicts control character n.
constexpr char16_t deletePicture = 0x2421;

/// Combining marks that one character bears; shaping takes quadratic time in them.
constexpr int mostMarks = 16;
constexpr char16_t firstMark = 0x300; ///< None comes before it.

bool isDirectionControl(char16_t unit)
{
    return (unit >= 0x202A && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069) || unit == 0x200E
        || unit == 0x200F || unit == 0x061C;
}

/// Separators and noncharacters, among them those by which text documents mark their blocks and frames.
bool isStructural(char16_t unit)
{
    return unit == QChar::LineSeparator || unit == QChar::ParagraphSeparator
        || (unit >= 0xFDD0 && unit <= 0xFDEF) || unit == QChar::ObjectReplacementCharacter || unit >= 0xFFFE;
}

QChar shown(QChar character)
{
    const char16_t unit = character.unicode();
    if (unit == u'\n' || unit == u'\t')
        return character;
    if (unit < 0x20)
        return QChar(static_cast<char16_t>(controlPictures + unit));
    if (unit == 0x7F)
        return QChar(deletePicture);
    if ((unit >= 0x80 && unit < 0xA0) || isStructural(unit) || isDirectionControl(unit))
        return QChar(QChar::ReplacementCharacter);
    return character;
}

/// Counts marks over the joiners and other characters of formats between them, which are no end of a pile.
void boundMarks(QString& text)
{
    int marks = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        char32_t point = text[i].unicode();
        if (point < firstMark) {
            marks = 0;
            continue;
        }
        const bool isPair = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (isPair)
            point = QChar::surrogateToUcs4(text[i], text[i + 1]);
        if (QChar::isMark(point))
            ++marks;
        else if (QChar::category(point) != QChar::Other_Format)
            marks = 0;
        if (marks > mostMarks && QChar::isMark(point)) {
            text[i] = QChar::ReplacementCharacter;
            if (isPair)
                text[i + 1] = QChar::ReplacementCharacter;
        }
        i += isPair ? 1 : 0;
    }
}

} // namespace

QString multiLine(std::string_view bytes)
{
    QString text = QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
    if (text.contains(QLatin1Char('\r'))) {
        text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
        text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    }
    bool mayHaveMarks = false;
    for (QChar& character : text) {
        character = shown(character);
        mayHaveMarks |= character.unicode() >= firstMark;
    }
    if (mayHaveMarks)
        boundMarks(text);
    return text;
}

QString singleLine(std::string_view bytes)
{
    QString text = multiLine(bytes);
    for (QChar& character : text) {
        if (character == QLatin1Char('\n') || character == QLatin1Char('\t'))
            character = QLatin1Char(' ');
    }
    return text;
}

} // namespace record_text
