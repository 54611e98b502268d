#pragma once

#include <QRegularExpression>
#include <QString>

#include <string>
#include <string_view>

/// What a user looks for.
struct FindQuery {
    QString text;
    bool matchCase = false;
    bool wholeWords = false;
    bool isExpression = false;

    bool operator==(const FindQuery&) const = default;
};

/// Finds a query in lines of text. A match never goes beyond its line, never overlaps another one, and is
/// never empty.
class FindPattern {
public:
    /// Finds nothing.
    FindPattern() = default;
    explicit FindPattern(const FindQuery& query);

    /// True when there is nothing to look for, also for an expression that is broken.
    bool isEmpty() const { return m_query.text.isEmpty() || !m_error.isEmpty(); }
    /// Why the expression is broken, and the number of characters before the fault; empty where it is not.
    const QString& error() const { return m_error; }
    qsizetype errorPlace() const { return m_errorPlace; }
    /// True when a line was too hard for the expression, and was passed over.
    bool hasGivenUp() const { return m_hasGivenUp; }

    struct Match {
        qsizetype start = -1; ///< -1 for none.
        qsizetype length = 0;
    };
    /// The first match in a line that does not begin before a place.
    Match find(QStringView line, qsizetype from = 0) const;
    bool isIn(QStringView line) const { return find(line).start >= 0; }

    /// The number of matches in lines of UTF-8.
    std::size_t count(std::string_view lines) const;

private:
    Match findText(QStringView line, qsizetype from) const;
    Match findExpression(QStringView line, qsizetype from) const;
    std::size_t countBytes(std::string_view lines) const;
    std::size_t countCharacters(QStringView lines) const;

    FindQuery m_query;
    QRegularExpression m_expression;
    QString m_error;
    qsizetype m_errorPlace = 0;
    std::string m_bytes; ///< Of a text of ASCII characters, in lower case where case does not matter.
    bool m_isAscii = false;
    bool m_matchesAscii = false; ///< Whether a text of ASCII characters can match at all.
    mutable std::string m_lowerCase; ///< Of what is searched.
    mutable bool m_hasGivenUp = false;
};
