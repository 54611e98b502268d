#include "ConsoleSaver.h"

#include "Console.h"
#include "ConsoleHtml.h"
#include "ConsoleMargin.h"
#include "ConsoleText.h"
#include "FileReplacement.h"
#include "Message.h"

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
    std::string take() { return (stamped + sink->take()).toStdString(); }
    /// Puts time and frame before the entry that the sink has got.
    void stamp(const EntryStamp& stamp)
    {
        const QString entry = sink->take();
        const auto text = std::find_if(
            entry.begin(), entry.end(), [](QChar character) { return character != QLatin1Char('\n'); });
        const auto start = text - entry.begin();
        const QString frame =
            stamp.frame == ui::messages::noFrame ? QStringLiteral("-") : QString::number(stamp.frame);
        stamped += entry.first(start);
        if (start < entry.size())
            stamped +=
                QStringLiteral("%1 %2  ").arg(ConsoleMargin::timeText(stamp.time), frame.rightJustified(7));
        stamped += entry.sliced(start);
    }

    QString path;
    platform::FileReplacement file;
    ConsoleSpool::Reader reader;
    std::unique_ptr<ConsoleFileSink> sink;
    bool hasStamps = false;
    QString stamped; ///< What is not written yet of a text with stamps.
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
    const QString stamped = tr("Plain text with time and frame (*.txt)");
    const QString html = tr("Web page (*.html)");
    dialog->setNameFilters({text, stamped, html});
    m_savesStamps = false;
    dialog->setDefaultSuffix(QStringLiteral("txt"));
    dialog->selectFile(fileName(name, pid, QDateTime::currentDateTime()));
    connect(
        dialog, &QFileDialog::filterSelected, dialog, [this, dialog, html, stamped](const QString& filter) {
            m_savesStamps = filter == stamped;
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
    m_job->hasStamps = m_savesStamps && !isHtml(path);
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
        if (!more)
            break;
        console_entry::write(entry, *m_job->sink);
        if (m_job->hasStamps)
            m_job->stamp(m_job->reader.stamp());
    }
    if (!m_job->reader.isValid()) {
        finish(false, tr("The console was not saved: what was kept of it cannot be read."));
        return;
    }
    if (more) {
        const std::string text = m_job->take();
        m_job->stamped.clear();
        if (!m_job->file.append(text))
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
