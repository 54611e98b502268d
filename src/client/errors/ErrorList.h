#pragma once

#include <QtGlobal>

#include <string_view>

/// What the error list's model, filter, view and delegate share.
namespace error_list {

/// Severities by number; the list shows no others.
enum Severity : qint32 {
    SeverityError = 0,
    SeverityWarning = 1,
};

enum Column {
    FrameColumn,
    FunctionColumn,
    CodeColumn,
    DescriptionColumn,
    ColumnCount,
};

/// Behind the others in a folded list.
inline constexpr int CountColumn = ColumnCount;

/// A problem as the model keeps it. The texts are UTF-8 and valid until the list is cleared.
struct Row {
    qint32 severity = SeverityError;
    qint32 frame = -1; ///< Negative where the problem belongs to no frame.
    std::string_view function; ///< API function that raised it, empty where none is known.
    std::string_view code; ///< Name of the GL error, empty where there is none.
    std::string_view description;
};

} // namespace error_list
