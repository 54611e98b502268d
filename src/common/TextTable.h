#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

class QAbstractItemModel;

/// A table of texts, to be copied or exported.
struct TextTable {
    struct Column {
        QString title; ///< For people.
        QString key; ///< For programs.
        bool isNumber = false; ///< Whether the cells are whole numbers, or empty.
    };

    enum class Format { Text, Csv, Markdown, JsonLines };

    std::vector<Column> columns;
    int rowCount = 0;
    /// Where the cells come from: they are of use until its reset.
    const QAbstractItemModel* model = nullptr;
    /// The cells of a row.
    std::function<QStringList(int row)> cells;

    /// The lines before the rows; none for JSON, whose rows have the keys.
    QString header(Format format) const;
    /// The line of a row. Text has tabs between cells and quotes where spreadsheets want them; a cell of a
    /// Markdown table is on one line and means nothing there.
    QString row(int row, Format format) const;

    /// What a model of texts shows.
    static TextTable of(const QAbstractItemModel& model);
};
