#pragma once

class QTextStream;

namespace reading {

/// Filters, folds and sorts an error list of so many rows, also while rows arrive, and prints what that took.
void measureErrors(QTextStream& out, int rows);

} // namespace reading
