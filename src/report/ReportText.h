#pragma once

#include "SystemReport.h"

/// A report as lines of plain text, aligned for a font of fixed width. Flags are shown by the names of the
/// host extensions that their keys are the codes of.
QString reportText(const SystemReport& report);
