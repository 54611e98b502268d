#include "TableExport.h"

#include "FileReplacement.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <array>
#include <utility>

namespace {

/// Milliseconds that one step takes.
constexpr int stepTime = 10;

struct Kind {
    TextTable::Format format;
    const char* suffix;
    const char* title;
};

constexpr std::array kinds{
    Kind{TextTable::Format::Csv, "csv", QT_TRANSLATE_NOOP("TableExport", "Comma-separated values (*.csv)")},
    Kind{TextTable::Format::JsonLines, "jsonl", QT_TRANSLATE_NOOP("TableExport", "JSON lines (*.jsonl)")},
    Kind{TextTable::Format::Markdown, "md", QT_TRANSLATE_NOOP("TableExport", "Markdown (*.md)")},
};

TextTable::Format formatOf(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("json"))
        return TextTable::Format::JsonLines;
    for (const Kind& kind : kinds) {
        if (suffix == QLatin1String(kind.suffix))
            return kind.format;
    }
    return TextTable::Format::Csv;
}

} // namespace

struct TableExport::Job {
    Job(QString filePath, TextTable contents)
        : path(std::move(filePath))
        , table(std::move(contents))
        , format(formatOf(path))
        , file(QFile::encodeName(path).toStdString(), platform::FileReplacement::WhenTaken::Refuse)
        , text(table.header(format))
    {
    }

    QString path;
    TextTable table;
    TextTable::Format format;
    platform::FileReplacement file;
    QString text; ///< Not written yet.
    int row = 0;
};

TableExport::TableExport(QWidget* parent)
    : QObject(parent)
    , m_widget(parent)
{
}

TableExport::~TableExport() = default;

void TableExport::ask(const QString& title, const QString& name, std::function<TextTable()> table)
{
    if (isBusy())
        return;
    // The dialog does not block: rows go on arriving, and the tab may be closed below it.
    auto* dialog = new QFileDialog(m_widget, title, QDir::homePath());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    QStringList filters;
    for (const Kind& kind : kinds)
        filters.append(tr(kind.title));
    dialog->setNameFilters(filters);
    dialog->setDefaultSuffix(QString::fromLatin1(kinds.front().suffix));
    dialog->selectFile(name + QLatin1Char('.') + QLatin1String(kinds.front().suffix));
    connect(dialog, &QFileDialog::filterSelected, dialog, [dialog, filters](const QString& filter) {
        const auto kind = static_cast<std::size_t>(std::max<qsizetype>(0, filters.indexOf(filter)));
        dialog->setDefaultSuffix(QString::fromLatin1(kinds[kind].suffix));
    });
    connect(dialog, &QFileDialog::fileSelected, this,
        [this, table = std::move(table)](const QString& path) { save(path, table()); });
    connect(dialog, &QObject::destroyed, this, [this] {
        m_dialog = nullptr; // a QPointer is cleared only later
        if (!isBusy())
            Q_EMIT done();
    });
    m_dialog = dialog;
    dialog->open();
}

void TableExport::save(const QString& path, const TextTable& table)
{
    if (m_job)
        return;
    m_job = std::make_unique<Job>(path, table);
    step();
}

void TableExport::step()
{
    if (!m_job)
        return;
    const QDeadlineTimer deadline(stepTime);
    const int count = m_job->table.rowCount;
    while (m_job->row < count && !deadline.hasExpired())
        m_job->text += m_job->table.row(m_job->row++, m_job->format);
    const std::string bytes = std::exchange(m_job->text, {}).toStdString();
    if (m_job->row < count) {
        if (m_job->file.append(bytes))
            QTimer::singleShot(0, this, &TableExport::step);
        else
            giveUp(QString::fromStdString(m_job->file.reason()));
        return;
    }
    const platform::FileResult result = m_job->file.commit(bytes);
    if (result)
        finish(true,
            tr("%n row(s) were saved to \"%1\".", nullptr, count).arg(QDir::toNativeSeparators(m_job->path)));
    else
        giveUp(QString::fromStdString(result.reason));
}

void TableExport::giveUp(const QString& reason)
{
    if (m_job)
        finish(false, tr("The rows were not saved: %1").arg(reason));
}

void TableExport::finish(bool saved, const QString& text)
{
    m_job.reset();
    Q_EMIT ended(saved, text);
    if (!isBusy())
        Q_EMIT done();
}
