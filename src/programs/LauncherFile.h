#pragma once

#include <QString>

/// Where the program finds `corvale-run`, which starts other programs so that they can be watched.
namespace launcher_file {

/// The path of the launcher: beside this program, in the build tree where this program is in one, or in a
/// folder of PATH; empty if it is nowhere.
QString find();

/// Tells the user that it is nowhere, and what to do.
QString missingText();

} // namespace launcher_file
