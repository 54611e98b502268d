#include "ErrorListTable.h"

#include "ErrorListFilterProxyModel.h"
#include "ErrorListModel.h"

#include <QCoreApplication>

#include <memory>
#include <utility>
#include <vector>

namespace error_list {

namespace {

QString title(const char* text)
{
    return QCoreApplication::translate("error_list", text);
}

QString severityName(qint32 severity)
{
    return severity == SeverityWarning ? QStringLiteral("warning") : QStringLiteral("error");
}

QString frameText(qint32 frame)
{
    return frame < 0 ? QString() : QString::number(frame);
}

QString toText(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::vector<TextTable::Column> textColumns()
{
    return {{title(QT_TRANSLATE_NOOP("error_list", "Function")), QStringLiteral("function")},
        {title(QT_TRANSLATE_NOOP("error_list", "Code")), QStringLiteral("code")},
        {title(QT_TRANSLATE_NOOP("error_list", "Description")), QStringLiteral("description")}};
}

std::vector<TextTable::Column> with(std::vector<TextTable::Column> columns)
{
    for (TextTable::Column& column : textColumns())
        columns.push_back(std::move(column));
    return columns;
}

std::vector<TextTable::Column> rowColumns()
{
    return with({{title(QT_TRANSLATE_NOOP("error_list", "Severity")), QStringLiteral("severity")},
        {title(QT_TRANSLATE_NOOP("error_list", "Frame")), QStringLiteral("frame"), true}});
}

QStringList cellsOf(const Row& row)
{
    return {severityName(row.severity), frameText(row.frame), toText(row.function), toText(row.code),
        toText(row.description)};
}

TextTable groupTable(const ErrorListFilterProxyModel& filter)
{
    TextTable table;
    table.columns = with({{title(QT_TRANSLATE_NOOP("error_list", "Severity")), QStringLiteral("severity")},
        {title(QT_TRANSLATE_NOOP("error_list", "Count")), QStringLiteral("count"), true},
        {title(QT_TRANSLATE_NOOP("error_list", "First frame")), QStringLiteral("first_frame"), true},
        {title(QT_TRANSLATE_NOOP("error_list", "Last frame")), QStringLiteral("last_frame"), true}});
    auto groups = std::make_shared<std::vector<ErrorListGroups::Group>>();
    for (int row = 0; row < filter.rowCount(); ++row) {
        if (filter.isGroup(row)) {
            groups->push_back(filter.group(row));
        } else {
            const int source = filter.sourceRow(row);
            const qint32 frame = filter.errors()->row(source).frame;
            groups->push_back({static_cast<std::uint32_t>(source), 0, frame, frame});
        }
    }
    table.rowCount = static_cast<int>(groups->size());
    table.model = filter.errors();
    table.cells = [groups, errors = filter.errors()](int row) -> QStringList {
        const ErrorListGroups::Group& group = (*groups)[static_cast<std::size_t>(row)];
        const Row first = errors->row(static_cast<int>(group.firstRow));
        return {severityName(first.severity), group.count > 0 ? QString::number(group.count) : QString(),
            frameText(group.firstFrame), frameText(group.lastFrame), toText(first.function),
            toText(first.code), toText(first.description)};
    };
    return table;
}

} // namespace

TextTable shownTable(const ErrorListFilterProxyModel& filter)
{
    if (filter.isFolded())
        return groupTable(filter);
    TextTable table;
    table.columns = rowColumns();
    table.rowCount = filter.rowCount();
    table.model = filter.errors();
    auto rows = std::make_shared<std::vector<int>>();
    rows->reserve(static_cast<std::size_t>(filter.rowCount()));
    for (int row = 0; row < filter.rowCount(); ++row)
        rows->push_back(filter.sourceRow(row));
    table.cells = [rows, errors = filter.errors()](int row) {
        return cellsOf(errors->row((*rows)[static_cast<std::size_t>(row)]));
    };
    return table;
}

TextTable wholeTable(const ErrorListModel& errors)
{
    TextTable table;
    table.columns = rowColumns();
    table.rowCount = errors.rowCount();
    table.model = &errors;
    table.cells = [&errors](int row) {
        return cellsOf(errors.row(row));
    };
    return table;
}

} // namespace error_list
