#include "FeedbackTexts.h"

#include <array>

namespace feedback_texts {

QString text(Language language, Text index)
{
    static const std::array<QString, std::size_t{languageCount} * textCount> table{
        QStringLiteral("Feedback"),
        QStringLiteral("Post your feedback in the Tessaric Forum"),
        QStringLiteral("Ok"),
        QStringLiteral("Please include the following text in your feedback"),
        QStringLiteral("Select text [Ctrl + A] and copy [Ctrl + C]"),
        QStringLiteral("Select text [Cmd + A] and copy [Cmd + C]"),
        QStringLiteral("Send your feedback to Tessaric Developer Technology"),
    };
    return table.at(std::size_t{language} * textCount + index);
}

} // namespace feedback_texts
