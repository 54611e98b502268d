#pragma once

#include <QString>

#include <string>

class QWidget;

/// Taking a profile file from elsewhere into the profiles directory, with its dialogs.
namespace profile_copying {

/// Offers to copy the file there, under a free name. Returns the copy's path; empty when the user declined or
/// when that cannot be done, which a message box has said then.
QString offerCopy(const QString& path, const std::string& directory, QWidget* parent);

} // namespace profile_copying
