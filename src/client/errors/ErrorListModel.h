#pragma once

#include "ErrorList.h"
#include "TextPool.h"

#include <QAbstractTableModel>
#include <QIcon>

#include <cstdint>
#include <deque>

/// The problems that a client reported, oldest first. Rows are only ever appended, and there may be millions,
/// so each is kept in few bytes. Cells answer the display role alone; the vertical header shows each row's
/// severity as an icon.
class ErrorListModel : public QAbstractTableModel {
    Q_OBJECT

public:
    static constexpr std::uint64_t noConsoleEntry = ~std::uint64_t(0);

    ErrorListModel(const QIcon& info, const QIcon& warning, const QIcon& error, QObject* parent = nullptr);

    void append(qint32 severity, qint32 frame, const QString& code, const QString& description,
        const QString& function, std::uint64_t consoleEntry = noConsoleEntry);
    /// Removes all rows.
    void clear();

    /// The severity of a row that exists.
    qint32 severity(int row) const;
    qint32 frame(int row) const;
    /// The serial number of the entry of the console that tells of a row, if any.
    std::uint64_t consoleEntry(int row) const { return m_rows[static_cast<std::size_t>(row)].consoleEntry; }
    /// The row that an entry of the console tells of, or the first one after it; -1 where there is none. All
    /// rows must have entries, in their order.
    int rowOfConsoleEntry(std::uint64_t entry) const;
    /// A row that exists.
    error_list::Row row(int row) const;
    /// A number for the text in one of the columns of texts: rows with the same number have the same text.
    TextPool::Reference textNumber(int row, error_list::Column column) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    struct StoredRow {
        qint32 severity;
        qint32 frame; ///< Negative where the problem belongs to no frame.
        TextPool::Reference code; ///< Name of the GL error, empty where there is none.
        TextPool::Reference description;
        TextPool::Reference function; ///< API function that raised it, empty where none is known.
        std::uint64_t consoleEntry;
    };

    QString text(TextPool::Reference reference) const;

    QIcon m_info;
    QIcon m_warning;
    QIcon m_error;
    TextPool m_texts;
    std::deque<StoredRow> m_rows;
};
