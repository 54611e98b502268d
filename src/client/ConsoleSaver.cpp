#include "ConsoleSaver.h"

#include "Console.h"
#include "ConsoleHtml.h"
#include "ConsoleText.h"
#include "FileReplacement.h"

#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QFileInfo>
#include <QTimer>

#include <algorithm>

namespace {

/// Milliseconds that one step of saving takes.
constexpr int stepTime = 10;

bool isHtml(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == QLatin1String("html") || suffix == QLatin1String("htm");
}

/// A name that any system takes for a file.
QString fileName(const QString& application, PID_TYPE pid, const QDateTime& time)
{
    QString name = QStringLiteral("%1-%2-%3")
                       .arg(application.isEmpty() ? QStringLiteral("console") : application)
                       .arg(pid)
                       .arg(time.toString(QStringLiteral("yyyyMMdd-HHmmss")));
    for (QChar& character : name) {
        if (!character.isLetterOrNumber() && !QStringLiteral("-_.").contains(character))
            character = QLatin1Char('-');
    }
    return name + QStringLiteral(".txt");
}

} // namespace

struct ConsoleSaver::Job {
    Job(const QString& filePath, ConsoleSpool& spool)
        : path(filePath)
        , file(QFile::encodeName(filePath).toStdString(), platform::FileReplacement::WhenTaken::Refuse)
        , reader(spool)
    {
        if (isHtml(path))
            sink = std::make_unique<ConsoleHtml>(tr("Console"));
        else
            sink = std::make_unique<ConsoleText>();
    }
    std::string take() { return sink->take().toStdString(); }

    QString path;
    platform::FileReplacement file;
    ConsoleSpool::Reader reader;
    std::unique_ptr<ConsoleFileSink> sink;
};

ConsoleSaver::ConsoleSaver(Console* console, QWidget* window)
    : QObject(console)
    , m_console(console)
    , m_window(window)
{
}

ConsoleSaver::~ConsoleSaver() = default;

void ConsoleSaver::ask(const QString& name, PID_TYPE pid)
{
    if (isBusy())
        return;
    // The dialog does not block: records go on arriving, and the tab may be closed below it.
    auto* dialog = new QFileDialog(m_window, tr("Save console"), QDir::homePath());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    const QString text = tr("Plain text (*.txt)");
    const QString html = tr("Web page (*.html)");
    dialog->setNameFilters({text, html});
    dialog->setDefaultSuffix(QStringLiteral("txt"));
    dialog->selectFile(fileName(name, pid, QDateTime::currentDateTime()));
    connect(dialog, &QFileDialog::filterSelected, dialog, [dialog, html](const QString& filter) {
        dialog->setDefaultSuffix(filter == html ? QStringLiteral("html") : QStringLiteral("txt"));
    });
    connect(dialog, &QFileDialog::fileSelected, this, &ConsoleSaver::save);
    connect(dialog, &QObject::destroyed, this, [this] {
        m_dialog = nullptr; // a QPointer is cleared only later
        Q_EMIT busyChanged(isBusy());
    });
    m_dialog = dialog;
    Q_EMIT busyChanged(true);
    dialog->open();
}

void ConsoleSaver::save(const QString& path)
{
    if (isSaving())
        return;
    m_job = std::make_unique<Job>(path, m_console->spool());
    Q_EMIT busyChanged(true);
    step();
}

void ConsoleSaver::step()
{
    if (!isSaving())
        return;
    QElapsedTimer time;
    time.start();
    std::string_view entry;
    bool more = true;
    while (more && !time.hasExpired(stepTime)) {
        more = m_job->reader.next(entry);
        if (more)
            console_entry::write(entry, *m_job->sink);
    }
    if (!m_job->reader.isValid()) {
        finish(false, tr("The console was not saved: what was kept of it cannot be read."));
        return;
    }
    if (more) {
        if (!m_job->file.append(m_job->take()))
            finish(
                false, tr("The console was not saved: %1").arg(QString::fromStdString(m_job->file.reason())));
        else
            QTimer::singleShot(0, this, &ConsoleSaver::step);
        return;
    }
    m_job->sink->finish();
    const platform::FileResult result = m_job->file.commit(m_job->take());
    const bool saved = static_cast<bool>(result);
    finish(saved,
        saved ? tr("The console was saved to \"%1\".").arg(QDir::toNativeSeparators(m_job->path))
              : tr("The console was not saved: %1").arg(QString::fromStdString(result.reason)));
}

void ConsoleSaver::finish(bool saved, const QString& text)
{
    m_job.reset();
    Q_EMIT busyChanged(isBusy());
    Q_EMIT m_console->statusMessage(text);
    Q_EMIT ended(saved);
}
