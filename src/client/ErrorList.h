#pragma once

#include <QString>

/// What the error list's model, filter, view and delegate share.
namespace errorList {

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

/// One reported problem.
struct Row {
    qint32 severity = SeverityError;
    qint32 frame = -1; ///< Negative where the problem belongs to no frame.
    QString code; ///< Name of the GL error, empty where there is none.
    QString description;
    QString function; ///< API function that raised it, empty where none is known.
};

} // namespace errorList
