#pragma once

#include <QAbstractTableModel>

#include <vector>

/// Extension names, and for OpenGL ES also whether they are supported. The texts are constants of the
/// program, so that a row takes two pointers. The support is translated when it is shown. Filled before a
/// view shows it.
class ExtensionModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { NameColumn, SupportColumn };

    /// With one column for names alone, with two for names and support.
    explicit ExtensionModel(int columns, QObject* parent = nullptr);

    /// Both are constants of the program; the support is marked for translation in this class.
    void append(const char* name, const char* support = "");

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    /// Cells answer the display role and, since they may be cut, the tool tip role.
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    struct Row {
        const char* name;
        const char* support;
    };

    int m_columns;
    std::vector<Row> m_rows;
};
