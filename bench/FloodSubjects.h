#pragma once

namespace flood {

/// The measurements throw std::runtime_error where they cannot be made.

/// Records a second that a loop takes from the socket which only cuts and counts.
double measureCeiling(int records);

/// Records a second that a plain text view shows, a line each, with the event loop running.
double measureBaseline(int records);

struct ListResult {
    double tick = 0; ///< Milliseconds until the rows are shown after a severity's box has been ticked.
    double scroll = 0; ///< Milliseconds that a jump of the scroll bar takes with its painting, at most.
    double append = 0; ///< Microseconds of each of the last rows.
};

/// An error list of so many rows in a shown page.
ListResult measureErrorList(int rows);

} // namespace flood
