#pragma once

#include <QString>

namespace flood {

/// The measurements of the program's own window throw std::runtime_error where they cannot be made.

/// A time in milliseconds: by the clock, and in processor time of the window's thread.
struct Span {
    double clock = 0;
    double work = 0;
};

struct Result {
    double rate = 0; ///< Records a second.
    double work = 0; ///< Microseconds of a processor that the window needs for a record.
    Span flatness; ///< Speed of the last tenth, compared with that of the first.
    Span longestGap; ///< In which the event loop did not come round.
    double slowestClick = 0; ///< Milliseconds from a click on a tab to its painted page; 0 without clicks.
    double settled = 0; ///< Milliseconds from the last record until the console is filled up.
    int rows = 0; ///< Of the error list.
    double bytesPerRow = 0; ///< Memory of a row of the error list, without its text.
};

enum class Meanwhile {
    Nothing,
    Clicks, ///< Somebody clicks on the tabs.
    Recording, ///< All sessions are recorded.
};

/// One client that sends as fast as it can into a tab whose console is in front.
Result measureWindow(int records, Meanwhile meanwhile = Meanwhile::Nothing);

struct CrowdResult {
    double rate = 0; ///< Records a second of all together.
    double fairness = 0; ///< Records of the slowest client, compared with the mean.
    Span longestGap;
};

/// Many clients at once for some seconds.
CrowdResult measureCrowd(int clients, int rate, int seconds);

/// What a window without clients does, in words.
QString measureIdle();

} // namespace flood
