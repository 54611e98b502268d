#pragma once

namespace models {

/// The columns of the profile trees. In both, Qt::EditRole is what is stored and Qt::DisplayRole what it is
/// called.
enum Column : int { KeyColumn = 0, ValueColumn = 1 };

} // namespace models
