#pragma once

class QTextStream;

namespace reading {

/// Finds texts in a console with so many entries, goes from match to match, and prints what that took.
void measureConsole(QTextStream& out, int entries);

} // namespace reading
