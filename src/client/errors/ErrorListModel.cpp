#include "ErrorListModel.h"

#include <algorithm>

using namespace error_list;

ErrorListModel::ErrorListModel(const QIcon& info, const QIcon& warning, const QIcon& error, QObject* parent)
    : QAbstractTableModel(parent)
    , m_info(info)
    , m_warning(warning)
    , m_error(error)
{
}

void ErrorListModel::append(qint32 severity, qint32 frame, const QString& code, const QString& description,
    const QString& function, std::uint64_t consoleEntry)
{
    const int row = rowCount();
    beginInsertRows(QModelIndex(), row, row);
    m_rows.push_back({severity, frame, m_texts.add(code.toStdString()),
        m_texts.add(description.toStdString()), m_texts.add(function.toStdString()), consoleEntry});
    endInsertRows();
}

int ErrorListModel::rowOfConsoleEntry(std::uint64_t entry) const
{
    const auto found = std::lower_bound(m_rows.begin(), m_rows.end(), entry,
        [](const StoredRow& row, std::uint64_t wanted) { return row.consoleEntry < wanted; });
    return found == m_rows.end() ? -1 : static_cast<int>(found - m_rows.begin());
}

void ErrorListModel::clear()
{
    beginResetModel();
    m_rows.clear();
    m_texts = TextPool();
    endResetModel();
}

Row ErrorListModel::row(int row) const
{
    const StoredRow& stored = m_rows[static_cast<std::size_t>(row)];
    return {stored.severity, stored.frame, m_texts.text(stored.function), m_texts.text(stored.code),
        m_texts.text(stored.description)};
}

TextPool::Reference ErrorListModel::textNumber(int row, Column column) const
{
    const StoredRow& stored = m_rows[static_cast<std::size_t>(row)];
    switch (column) {
    case FunctionColumn:
        return stored.function;
    case CodeColumn:
        return stored.code;
    default:
        return stored.description;
    }
}

qint32 ErrorListModel::severity(int row) const
{
    return m_rows.at(static_cast<std::size_t>(row)).severity;
}

qint32 ErrorListModel::frame(int row) const
{
    return m_rows.at(static_cast<std::size_t>(row)).frame;
}

QString ErrorListModel::text(TextPool::Reference reference) const
{
    const std::string_view bytes = m_texts.text(reference);
    return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

int ErrorListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int ErrorListModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ErrorListModel::data(const QModelIndex& index, int role) const
{
    if (role != Qt::DisplayRole || !checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const StoredRow& row = m_rows[static_cast<std::size_t>(index.row())];
    switch (index.column()) {
    case FrameColumn:
        return row.frame < 0 ? QString() : QString::number(row.frame);
    case FunctionColumn:
        return text(row.function);
    case CodeColumn:
        return text(row.code);
    case DescriptionColumn:
        return text(row.description);
    default:
        return {};
    }
}

QVariant ErrorListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Vertical) {
        if (role != Qt::DecorationRole || section < 0 || section >= rowCount())
            return {};
        switch (severity(section)) {
        case SeverityError:
            return m_error;
        case SeverityWarning:
            return m_warning;
        default:
            return {};
        }
    }
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case FrameColumn:
        return tr("Frame");
    case FunctionColumn:
        return tr("Function");
    case CodeColumn:
        return tr("Code");
    case DescriptionColumn:
        return tr("Description");
    default:
        return {};
    }
}
