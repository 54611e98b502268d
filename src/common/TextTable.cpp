#include "TextTable.h"

#include <QAbstractItemModel>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

/// In quotes where it has one of these letters.
QString quoted(QString cell, const QString& letters)
{
    const bool isPlain = std::none_of(
        cell.cbegin(), cell.cend(), [&letters](QChar letter) { return letters.contains(letter); });
    if (isPlain)
        return cell;
    return QLatin1Char('"') + cell.replace(QLatin1Char('"'), QStringLiteral("\"\"")) + QLatin1Char('"');
}

QString markdown(const QString& cell)
{
    QString text;
    for (const QChar letter : cell) {
        if (letter == QLatin1Char('\n') || letter == QChar(QChar::LineSeparator)) {
            text += QStringLiteral("<br>");
        } else if (letter == QLatin1Char('\t') || letter == QLatin1Char('\r')) {
            text += QLatin1Char(' ');
        } else {
            if (QStringLiteral("\\|`*<>[]").contains(letter))
                text += QLatin1Char('\\');
            text += letter;
        }
    }
    return text;
}

QString line(const QStringList& cells, TextTable::Format format)
{
    QStringList texts;
    for (const QString& cell : cells) {
        if (format == TextTable::Format::Markdown)
            texts.append(markdown(cell));
        else
            texts.append(quoted(cell,
                format == TextTable::Format::Csv ? QStringLiteral(",\"\r\n") : QStringLiteral("\t\"\r\n")));
    }
    switch (format) {
    case TextTable::Format::Markdown:
        return QStringLiteral("| ") + texts.join(QStringLiteral(" | ")) + QStringLiteral(" |\n");
    case TextTable::Format::Csv:
        return texts.join(QLatin1Char(',')) + QLatin1Char('\n');
    default:
        return texts.join(QLatin1Char('\t')) + QLatin1Char('\n');
    }
}

} // namespace

QString TextTable::header(Format format) const
{
    if (format == Format::JsonLines)
        return {};
    QStringList titles;
    QString rule = QStringLiteral("|");
    for (const Column& column : columns) {
        titles.append(column.title);
        rule += column.isNumber ? QStringLiteral(" ---: |") : QStringLiteral(" --- |");
    }
    return line(titles, format) + (format == Format::Markdown ? rule + QLatin1Char('\n') : QString());
}

QString TextTable::row(int row, Format format) const
{
    const QStringList texts = cells(row);
    if (format != Format::JsonLines)
        return line(texts, format);
    QJsonObject object;
    for (qsizetype i = 0; i < texts.size(); ++i) {
        const Column& column = columns[static_cast<std::size_t>(i)];
        if (!column.isNumber)
            object.insert(column.key, texts[i]);
        else
            object.insert(column.key, texts[i].isEmpty() ? QJsonValue() : QJsonValue(texts[i].toLongLong()));
    }
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)) + QLatin1Char('\n');
}

TextTable TextTable::of(const QAbstractItemModel& model)
{
    TextTable table;
    for (int column = 0; column < model.columnCount(); ++column) {
        const QString title = model.headerData(column, Qt::Horizontal).toString();
        table.columns.push_back({title, title.toLower(), false});
    }
    table.rowCount = model.rowCount();
    table.model = &model;
    table.cells = [&model](int row) {
        QStringList texts;
        for (int column = 0; column < model.columnCount(); ++column)
            texts.append(model.index(row, column).data().toString());
        return texts;
    };
    return table;
}
