#pragma once

/// Makes the compiled-in icons and images known under ":/CorvaleResources/". Calling it again does no harm.
void registerResources();
