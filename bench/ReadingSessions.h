#pragma once

class QTextStream;

namespace reading {

/// Opens a session with so many records in the window, and measures what recording one costs. Throws
/// std::runtime_error where that cannot be.
void measureSessions(QTextStream& out, int records);

} // namespace reading
