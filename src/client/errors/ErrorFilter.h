#pragma once

#include "ErrorList.h"
#include "TextSearch.h"

#include <QRegularExpression>
#include <QString>

#include <optional>
#include <variant>
#include <vector>

/// Chooses rows of an error list. A filter is a list of alternatives, of which one must hold; an alternative
/// is a list of conditions, which must all hold. Without alternatives every row is chosen.
class ErrorFilter {
public:
    /// A text somewhere in the function, the code or the description.
    struct Contains {
        TextSearch text;
    };
    /// A regular expression that matches somewhere in one of these texts.
    struct Matches {
        QRegularExpression expression;
    };
    /// A pattern with * and ? for the whole function or the whole code.
    struct Named {
        error_list::Column column;
        std::string pattern; ///< UTF-8, ASCII letters in lower case.
    };
    /// Frames from the first to the last; rows without a frame only where "none" is asked for.
    struct InFrames {
        qint32 first;
        qint32 last;
        bool isNone;
    };
    struct OfSeverity {
        qint32 severity;
    };

    struct Condition {
        std::variant<OfSeverity, InFrames, Named, Contains, Matches> what;
        bool isNegated = false;
    };
    using Alternative = std::vector<Condition>;

    ErrorFilter() = default;
    explicit ErrorFilter(std::vector<Alternative> alternatives)
        : m_alternatives(std::move(alternatives))
    {
    }

    bool isEmpty() const { return m_alternatives.empty(); }
    bool matches(const error_list::Row& row) const;

    /// True after an expression took so long on a row that it was given up, and the row taken for one that
    /// does not match.
    bool hasGivenUp() const { return m_hasGivenUp; }

private:
    bool holds(const Condition& condition, const error_list::Row& row) const;
    bool matches(const QRegularExpression& expression, const error_list::Row& row) const;

    std::vector<Alternative> m_alternatives;
    mutable bool m_hasGivenUp = false;
};

/// Whether a text matches a pattern with * (any letters) and ? (one letter). ASCII letters match in either
/// case, those of the pattern must be in lower case. Takes time in proportion to both lengths at most.
bool matchesWildcards(std::string_view text, std::string_view pattern);
