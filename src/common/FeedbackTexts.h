#pragma once

#include <QString>

/// The texts of the feedback dialog, in each language that there is.
namespace feedback_texts {

enum Language {
    BritishEnglish,
    languageCount,
};

enum Text {
    Title,
    PostInForum,
    Ok,
    IncludeText,
    CopyWithCtrl,
    CopyWithCmd,
    SendToSupport,
    textCount,
};

QString text(Language language, Text index);

} // namespace feedback_texts
