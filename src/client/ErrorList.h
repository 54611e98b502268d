#pragma once

#include <QtGlobal>

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

} // namespace error_list
