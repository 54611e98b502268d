#pragma once

/// Makes the compiled-in icons and images known under ":/CorvaleResources/" and
/// ":/CommonGUIElements/". Calling it again does no harm.
void registerResources();
