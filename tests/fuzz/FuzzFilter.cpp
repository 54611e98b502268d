// Reads the text of a filter: a fault lies within the text, and a filter judges rows without a crash and in
// little time. Two filters in a row, with a bar between, choose what one of them chooses.

#include "ErrorFilterParser.h"

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

namespace {

void demand(bool condition, const char* what, const QString& detail)
{
    if (condition)
        return;
    std::fprintf(stderr, "broken: %s\n%s\n", what, qPrintable(detail));
    std::abort();
}

std::optional<ErrorFilter> read(const QString& text)
{
    ErrorFilterParser parser(text);
    std::optional<ErrorFilter> filter = parser.parse();
    if (!filter) {
        const ErrorFilterFault& fault = parser.fault();
        demand(!fault.message.isEmpty() && fault.length > 0, "a fault says what and where", text);
        demand(fault.position >= 0 && fault.position <= text.size(), "a fault is within the text", text);
    }
    return filter;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const std::string function = input.ConsumeRandomLengthString(30);
    const std::string description = input.ConsumeRandomLengthString(100);
    const std::vector<error_list::Row> rows = {
        {error_list::SeverityError, input.ConsumeIntegral<qint32>(), function, "GL_INVALID_VALUE",
            description},
        {error_list::SeverityWarning, 7, "glTexImage2D", "", "Level 1 is \"too large\""},
    };
    const QString first = QString::fromStdString(input.ConsumeRandomLengthString(200));
    const QString second = QString::fromStdString(input.ConsumeRemainingBytesAsString());
    const std::optional<ErrorFilter> one = read(first);
    const std::optional<ErrorFilter> other = read(second);
    if (!one || !other || one->isEmpty() || other->isEmpty())
        return 0;
    const QString text = first + QStringLiteral(" | ") + second;
    const std::optional<ErrorFilter> both = read(text);
    if (text.size() > ErrorFilterParser::longestText)
        return 0;
    demand(both.has_value(), "alternatives are a filter", text);
    for (const error_list::Row& row : rows) {
        const bool isChosen = one->matches(row) || other->matches(row);
        demand(both->matches(row) == isChosen, "alternatives choose what one of them chooses", text);
    }
    return 0;
}
