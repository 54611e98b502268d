#pragma once

#include <Qt>

namespace models {

/// The columns of the profile trees. In both, Qt::EditRole is what is stored and Qt::DisplayRole what it is
/// called.
enum Column : int { KeyColumn = 0, ValueColumn = 1 };

/// What the profile trees tell beyond Qt's roles.
enum Role : int {
    /// Whether the saved document does not have the row, or has another key or value in it. The same in all
    /// columns, so a change of one cell can change it for the others; Qt::AccessibleDescriptionRole says it
    /// in
    /// words.
    UnsavedRole = Qt::UserRole
};

} // namespace models
