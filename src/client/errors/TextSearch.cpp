#include "TextSearch.h"

#include <algorithm>

namespace {

bool isAscii(const QString& text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar letter) { return letter.unicode() < 0x80; });
}

} // namespace

TextSearch::TextSearch(const QString& text)
    : m_text(text)
{
    if (text.isEmpty() || !isAscii(text))
        return;
    m_ascii = text.toLower().toStdString();
    const auto size = static_cast<std::uint32_t>(m_ascii.size());
    m_skips.fill(size);
    for (std::uint32_t i = 0; i + 1 < size; ++i) {
        const char lower = m_ascii[i];
        m_skips[static_cast<unsigned char>(lower)] = size - 1 - i;
        if (lower >= 'a' && lower <= 'z')
            m_skips[static_cast<unsigned char>(lower - 'a' + 'A')] = size - 1 - i;
    }
}

bool TextSearch::isIn(std::string_view text) const
{
    if (!m_ascii.empty())
        return isAsciiIn(text);
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()))
        .contains(m_text, Qt::CaseInsensitive);
}

/// Horspool's way: compares from behind, and goes on as far as the last byte allows.
bool TextSearch::isAsciiIn(std::string_view text) const
{
    const std::size_t size = m_ascii.size();
    std::size_t at = 0;
    while (at + size <= text.size()) {
        std::size_t left = size;
        while (left > 0 && foldCase(text[at + left - 1]) == m_ascii[left - 1])
            --left;
        if (left == 0)
            return true;
        at += m_skips[static_cast<unsigned char>(text[at + size - 1])];
    }
    return false;
}
