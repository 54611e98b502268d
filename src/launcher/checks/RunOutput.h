#pragma once

#include "GuardedFile.h"

#include <functional>

namespace checks {

/// What a run writes on standard output and error, held back in files without names until it has ended: of
/// runs at the same time nobody could tell whose a line is.
class RunOutput {
public:
    /// Nothing is held back where no file can be made.
    RunOutput();

    /// In the process of the run: from now on both streams go to the files.
    void redirect() const;
    bool isEmpty() const;
    /// Asked now and then whether to go on; where a stream takes nothing just now, it is stalled.
    using MayGoOn = std::function<bool(bool isStalled)>;
    /// Passes all of it on to the streams that it was for.
    void pass(const MayGoOn& mayGoOn) const;

private:
    platform::FileStream m_output;
    platform::FileStream m_errors; ///< None where both streams are the same; then the order of lines stays.
};

} // namespace checks
