#include "ExtensionModel.h"

ExtensionModel::ExtensionModel(int columns, QObject* parent)
    : QAbstractTableModel(parent)
    , m_columns(columns)
{
}

void ExtensionModel::append(const char* name, const char* support)
{
    m_rows.push_back({name, support});
}

int ExtensionModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int ExtensionModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_columns;
}

QVariant ExtensionModel::data(const QModelIndex& index, int role) const
{
    if ((role != Qt::DisplayRole && role != Qt::ToolTipRole)
        || !checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const Row& row = m_rows[static_cast<std::size_t>(index.row())];
    return index.column() == NameColumn ? QString::fromLatin1(row.name) : tr(row.support);
}

QVariant ExtensionModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= m_columns)
        return {};
    return section == NameColumn ? tr("Name") : tr("Supported");
}
