#include "SelectorValues.h"

#include "EglEnumerants.h"
#include "GlEnumerants.h"

namespace widgets {

QStringList decimals(const QList<std::int32_t>& numbers)
{
    QStringList texts;
    for (const std::int32_t number : numbers)
        texts += QString::number(number);
    return texts;
}

QList<std::int32_t> eglNumbers(std::initializer_list<const char*> names)
{
    QList<std::int32_t> numbers;
    for (const char* name : names) {
        if (const std::optional<std::int32_t> number = egl::enumerantValue(name))
            numbers += *number;
    }
    return numbers;
}

QStringList glDecimals(const QList<const char*>& names)
{
    QStringList texts;
    for (const char* name : names) {
        if (const std::optional<std::int32_t> number = gl::enumerantValue(name))
            texts += QString::number(static_cast<std::uint32_t>(*number));
    }
    texts.removeDuplicates();
    return texts;
}

} // namespace widgets
