#pragma once

#include "ErrorFilter.h"

#include <QCoreApplication>
#include <QString>
#include <QStringView>

#include <optional>

/// What is wrong with a filter's text, and where: positions count from 0 in UTF-16.
struct ErrorFilterFault {
    QString message;
    qsizetype position = 0;
    qsizetype length = 0;
};

/// Reads the text of a filter:
///
///     filter      = alternative { "|" alternative }
///     alternative = condition { condition }                 all of them must hold
///     condition   = [ "-" ] ( word | phrase | expression | field ":" ( word | phrase ) )
///     phrase      = '"' ... '"'                             \" and \\ stand for these letters
///     expression  = "/" ... "/" [ "i" ]                     \/ stands for a slash, i for either case
///     field       = "fn" | "code" | "frame" | "sev"
///
/// An empty text chooses everything.
class ErrorFilterParser {
    Q_DECLARE_TR_FUNCTIONS(ErrorFilterParser)

public:
    /// Letters of a text that is read at most.
    static constexpr qsizetype longestText = 2000;

    explicit ErrorFilterParser(const QString& text)
        : m_text(text)
    {
    }

    /// Nothing where the text has a fault.
    std::optional<ErrorFilter> parse();
    /// Of the last parse() without a result.
    const ErrorFilterFault& fault() const { return m_fault; }

private:
    /// A word or phrase, and where it stands.
    struct Value {
        QString text;
        qsizetype position = 0;
        qsizetype length = 0;
        bool isPhrase = false;
    };

    bool readAlternative(ErrorFilter::Alternative& alternative);
    bool readCondition(ErrorFilter::Condition& condition);
    bool readExpression(ErrorFilter::Condition& condition);
    bool readField(const Value& name, ErrorFilter::Condition& condition);
    bool readFrames(const Value& value, ErrorFilter::Condition& condition);
    bool readSeverity(const Value& value, ErrorFilter::Condition& condition);
    bool readValue(Value& value, bool endsAtColon);
    bool readPhrase(Value& value);
    void skipSpaces();
    bool isAtEnd() const { return m_at >= m_text.size(); }
    QChar letter() const { return m_text.at(m_at); }
    bool fail(const QString& message, qsizetype position, qsizetype length);

    QString m_text;
    qsizetype m_at = 0;
    ErrorFilterFault m_fault;
};
