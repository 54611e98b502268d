#pragma once

#include <QString>

/// The versions of Qt, as it runs, and of TinyXML-2, as it was compiled with, in one line.
QString libraryVersions();

/// What a problem report needs to know about this session: libraries, system and the profile that is shown.
/// Lines of plain text, aligned.
QString systemFacts(const QString& profile);
