#pragma once

#include "Context.h"

namespace layer {

/// What is done when a context is current for the first time: errors are looked for from now on, and the
/// window learns of it. The context must be current in this thread.
void startContext(Context& context);

/// Tells of a context that is never going to be current, with what was asked for.
void tellUnused(Context& context);

} // namespace layer
