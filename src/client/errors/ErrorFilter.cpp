#include "ErrorFilter.h"

#include <algorithm>
#include <array>

namespace {

template <typename... Types> struct Overloaded : Types... {
    using Types::operator()...;
};
template <typename... Types> Overloaded(Types...) -> Overloaded<Types...>;

std::array<std::string_view, 3> textsOf(const error_list::Row& row)
{
    return {row.description, row.function, row.code};
}

bool isIn(const ErrorFilter::InFrames& frames, qint32 frame)
{
    return frames.isNone ? frame < 0 : frame >= frames.first && frame <= frames.last && frame >= 0;
}

} // namespace

bool matchesWildcards(std::string_view text, std::string_view pattern)
{
    std::size_t at = 0;
    std::size_t in = 0;
    std::size_t star = std::string_view::npos; ///< Behind the last star.
    std::size_t resume = 0; ///< Where the text goes on when that star takes one letter more.
    while (at < text.size()) {
        if (in < pattern.size() && pattern[in] == '*') {
            star = ++in;
            resume = at;
        } else if (in < pattern.size() && (pattern[in] == '?' || pattern[in] == foldCase(text[at]))) {
            ++in;
            ++at;
        } else if (star != std::string_view::npos) {
            in = star;
            at = ++resume;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', in) == std::string_view::npos;
}

bool ErrorFilter::matches(const error_list::Row& row) const
{
    const auto allHold = [this, &row](const Alternative& alternative) {
        return std::all_of(alternative.begin(), alternative.end(), [this, &row](const Condition& condition) {
            return holds(condition, row) != condition.isNegated;
        });
    };
    return m_alternatives.empty() || std::any_of(m_alternatives.begin(), m_alternatives.end(), allHold);
}

bool ErrorFilter::holds(const Condition& condition, const error_list::Row& row) const
{
    return std::visit(
        Overloaded{
            [&row](const Contains& contains) {
                const auto texts = textsOf(row);
                return std::any_of(texts.begin(), texts.end(),
                    [&contains](std::string_view text) { return contains.text.isIn(text); });
            },
            [this, &row](const Matches& matching) { return matches(matching.expression, row); },
            [&row](const Named& named) {
                return matchesWildcards(
                    named.column == error_list::CodeColumn ? row.code : row.function, named.pattern);
            },
            [&row](const InFrames& frames) { return isIn(frames, row.frame); },
            [&row](const OfSeverity& wanted) { return wanted.severity == row.severity; },
        },
        condition.what);
}

bool ErrorFilter::matches(const QRegularExpression& expression, const error_list::Row& row) const
{
    for (const std::string_view text : textsOf(row)) {
        const QRegularExpressionMatch match =
            expression.match(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
        if (match.hasMatch())
            return true;
        m_hasGivenUp = m_hasGivenUp || !match.isValid();
    }
    return false;
}
