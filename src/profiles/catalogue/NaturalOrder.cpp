#include "NaturalOrder.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr std::string_view digits = "0123456789";

bool isDigit(char c)
{
    return digits.find(c) != std::string_view::npos;
}

std::string_view takeNumber(std::string_view& text)
{
    const std::size_t length = std::min(text.find_first_not_of(digits), text.size());
    std::string_view number = text.substr(0, length);
    text.remove_prefix(length);
    number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
    return number;
}

unsigned char takeFolded(std::string_view& text)
{
    const char c = text.front();
    text.remove_prefix(1);
    return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
}

/// Negative, zero or positive, as the first text's next piece comes before, with or after the second's.
int compareNext(std::string_view& left, std::string_view& right)
{
    if (!isDigit(left.front()) || !isDigit(right.front()))
        return takeFolded(left) - takeFolded(right);
    // Without leading zeros the longer number is the larger one.
    const std::string_view leftNumber = takeNumber(left);
    const std::string_view rightNumber = takeNumber(right);
    if (leftNumber.size() != rightNumber.size())
        return leftNumber.size() < rightNumber.size() ? -1 : 1;
    return leftNumber.compare(rightNumber);
}

} // namespace

bool naturalLess(std::string_view left, std::string_view right)
{
    const std::string_view wholeLeft = left;
    const std::string_view wholeRight = right;
    while (!left.empty() && !right.empty()) {
        const int order = compareNext(left, right);
        if (order != 0)
            return order < 0;
    }
    if (left.empty() && right.empty())
        return wholeLeft < wholeRight;
    return left.empty();
}
