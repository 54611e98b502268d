#pragma once

// What the generated wrappers are made of.
#include "Argument.h"
#include "Checks.h"
#include "Context.h"
#include "DeviceConfigs.h"
#include "DeviceGate.h"
#include "Host.h"

namespace layer {

/// For functions of EGL that name no display: the driver of this thread's context, else the first.
inline Host& hostOf()
{
    return *currentContext().host;
}

} // namespace layer
