#pragma once

#include "TextTable.h"

class ErrorListFilterProxyModel;
class ErrorListModel;

/// The rows of an error list as tables to copy and export. Severities are named as in filters.
namespace error_list {

/// What is shown now, whatever is shown later. The rows below a group have no count. The models must live as
/// long as the table is used, and the list is not to be cleared.
TextTable shownTable(const ErrorListFilterProxyModel& filter);
/// All rows that have arrived.
TextTable wholeTable(const ErrorListModel& errors);

} // namespace error_list
