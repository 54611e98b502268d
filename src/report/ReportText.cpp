#include "ReportText.h"

#include "ExtensionCatalogue.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <iterator>
#include <vector>

namespace {

struct ReportText {
    Q_DECLARE_TR_FUNCTIONS(ReportText)
};

/// Characters that a column takes at most; what is longer pushes the rest of its own row only.
constexpr qsizetype widestColumn = 48;
const auto columnGap = QStringLiteral("  ");

/// A number's digits, a name or whatever else stands in one place of a row.
struct Cell {
    QString text;
    bool isNumber = false;
};
using Row = std::vector<Cell>;

Cell number(quint64 value)
{
    return {QString::number(value), true};
}

Cell yesOrNo(quint8 value)
{
    if (value > 1)
        return number(value);
    return {value == 0 ? ReportText::tr("no") : ReportText::tr("yes")};
}

/// One column's width in characters, as far as its rows fit.
qsizetype columnWidth(const std::vector<Row>& rows, std::size_t column)
{
    qsizetype width = 0;
    for (const Row& row : rows) {
        if (row[column].text.size() <= widestColumn)
            width = std::max(width, row[column].text.size());
    }
    return width;
}

/// A row's text. Further lines of its last cell stand below the first one.
QString rowText(const Row& row, const std::vector<qsizetype>& widths)
{
    QString line;
    for (std::size_t i = 0; i + 1 < row.size(); ++i) {
        const QString& text = row[i].text;
        line += row[i].isNumber ? text.rightJustified(widths[i]) : text.leftJustified(widths[i]);
        line += columnGap;
    }
    const Cell& last = row.back();
    const QString further = QLatin1Char('\n') + QString(line.size(), QLatin1Char(' '));
    line += last.isNumber ? last.text.rightJustified(widths.back()) : last.text;
    return line.replace(QLatin1Char('\n'), further);
}

/// A heading and its rows, all with the same number of cells; nothing where there are no rows.
void appendSection(QStringList& lines, const QString& heading, const std::vector<Row>& rows)
{
    if (rows.empty())
        return;
    lines << QString() << heading << QString(heading.size(), QLatin1Char('-'));
    std::vector<qsizetype> widths;
    for (std::size_t column = 0; column < rows.front().size(); ++column)
        widths.push_back(columnWidth(rows, column));
    for (const Row& row : rows)
        lines << rowText(row, widths);
}

template <typename Entries, typename MakeRow>
std::vector<Row> makeRows(const Entries& entries, const MakeRow& makeRow)
{
    std::vector<Row> rows;
    rows.reserve(entries.size());
    std::transform(entries.begin(), entries.end(), std::back_inserter(rows), makeRow);
    return rows;
}

Row keyedRow(const SystemReport::KeyedText& entry)
{
    return {number(entry.key), {entry.text}};
}

} // namespace

QString reportText(const SystemReport& report)
{
    QStringList lines{ReportText::tr("System report %1")
                          .arg(report.leadingNumber ? QString::number(*report.leadingNumber)
                                                    : ReportText::tr("without a number"))};
    lines << QString(lines.front().size(), QLatin1Char('='));
    appendSection(
        lines, ReportText::tr("Host extensions"), makeRows(report.flags, [](const auto& entry) -> Row {
            return {number(entry.first), {QString::fromLatin1(catalogue::hostExtensionName(entry.first))},
                yesOrNo(entry.second)};
        }));
    appendSection(lines, ReportText::tr("Support"), makeRows(report.texts, [](const auto& entry) -> Row {
        return {{entry.text}, yesOrNo(entry.value)};
    }));
    appendSection(lines, ReportText::tr("Values"), makeRows(report.details, [](const auto& entry) -> Row {
        return {{entry.text}, number(entry.value)};
    }));
    appendSection(lines, ReportText::tr("Details"), makeRows(report.keyedTexts, keyedRow));
    appendSection(lines, ReportText::tr("Further details"), makeRows(report.otherKeyedTexts, keyedRow));
    if (lines.size() == 2)
        lines << QString() << ReportText::tr("The report has no entries.");
    if (report.dropped > 0)
        lines
            << QString()
            << ReportText::tr("The report was too long: %1 of its entries are left out.").arg(report.dropped);
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}
