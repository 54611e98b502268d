#include "RecentFilesMenu.h"

#include "PlainToolTip.h"
#include "Preferences.h"

#include <QDir>
#include <QFileInfo>

namespace {

/// Average characters that an entry shows of a name and of a folder.
constexpr int shownLength = 40;

/// A text as an entry of a menu shows it: on one line, with ampersands and tabs that mean nothing.
QString entryText(const QFontMetrics& metrics, QString text)
{
    text.replace(QLatin1Char('\t'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
    text = metrics.elidedText(text, Qt::ElideMiddle, shownLength * metrics.averageCharWidth());
    return text.replace(QLatin1Char('&'), QStringLiteral("&&"));
}

} // namespace

RecentFilesMenu::RecentFilesMenu(Preferences& preferences, const QString& title, QWidget* parent,
    const Setting<property_list::List>& setting)
    : QMenu(title, parent)
    , m_preferences(preferences)
    , m_setting(setting)
{
    setToolTipsVisible(true);
    fill();
    connect(this, &QMenu::aboutToShow, this, &RecentFilesMenu::fill);
}

QStringList RecentFilesMenu::files() const
{
    QStringList files;
    for (const std::string& path : m_preferences.get(m_setting)) {
        // The file may have been written by hand.
        if (!path.empty() && files.size() < mostFiles)
            files.append(QString::fromStdString(path));
    }
    return files;
}

void RecentFilesMenu::addFile(const QString& path)
{
    const QString absolute = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    QStringList list = files();
    list.removeAll(absolute);
    list.prepend(absolute);
    store(list.mid(0, mostFiles));
}

void RecentFilesMenu::store(const QStringList& files)
{
    property_list::List list;
    for (const QString& file : files)
        list.push_back(file.toStdString());
    m_preferences.set(m_setting, list);
    menuAction()->setEnabled(!files.isEmpty());
}

void RecentFilesMenu::fill()
{
    clear();
    const QStringList list = files();
    int number = 0;
    for (const QString& path : list)
        addEntry(path, ++number);
    addSeparator();
    QAction* forget = addAction(tr("&Clear List"), this, [this] { store({}); });
    forget->setToolTip(tr("Forget these files; nothing happens to the files themselves"));
    menuAction()->setEnabled(!list.isEmpty());
}

void RecentFilesMenu::addEntry(const QString& path, int number)
{
    const QFileInfo file(path);
    // The tenth entry has the key 0.
    const QString key = number < mostFiles ? QStringLiteral("&%1").arg(number) : QStringLiteral("1&0");
    QAction* action = addAction(QStringLiteral("%1  %2 (%3)")
                                    .arg(key, entryText(fontMetrics(), file.fileName()),
                                        entryText(fontMetrics(), QDir::toNativeSeparators(file.path()))));
    action->setToolTip(plainToolTip(path));
    connect(action, &QAction::triggered, this, [this, path] { choose(path); });
}

void RecentFilesMenu::choose(const QString& path)
{
    if (QFileInfo::exists(path)) {
        Q_EMIT fileChosen(path);
        return;
    }
    QStringList list = files();
    list.removeAll(path);
    store(list);
    Q_EMIT fileMissing(path);
}
