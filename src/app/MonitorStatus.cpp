#include "MonitorStatus.h"

#include "ElidedLabel.h"
#include "PlainToolTip.h"

#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QLocale>
#include <QStatusBar>
#include <QStyle>
#include <QToolButton>

#include <algorithm>

namespace {

/// Milliseconds between two updates of the shown counts at least.
constexpr int updateTime = 100;

void setIcon(QLabel& label, const QString& name)
{
    const int side = label.style()->pixelMetric(QStyle::PM_SmallIconSize);
    label.setPixmap(QIcon(QStringLiteral(":/CorvaleResources/") + name)
                        .pixmap(QSize(side, side), label.devicePixelRatioF()));
}

} // namespace

MonitorStatus::MonitorStatus(QStatusBar* bar)
    : QObject(bar)
    , m_bar(bar)
{
    m_listeningIcon = new QLabel(bar);
    m_listening = new ElidedLabel(bar);
    m_listening->setObjectName(QStringLiteral("lblListening"));
    bar->addWidget(m_listeningIcon);
    bar->addWidget(m_listening);

    m_instance = new ElidedLabel(bar);
    m_instance->setObjectName(QStringLiteral("lblInstanceProblem"));
    m_instance->hide();
    bar->addWidget(m_instance, 1);
    m_skipped = new ElidedLabel(bar);
    m_skipped->setObjectName(QStringLiteral("lblSkippedProfiles"));
    m_skipped->hide();
    bar->addWidget(m_skipped, 1);
    addPreferencesPart();

    m_clients = new QLabel(bar);
    m_clients->setObjectName(QStringLiteral("lblClients"));
    m_clients->setToolTip(tr("Applications that are connected now"));
    bar->addPermanentWidget(m_clients);
    m_errors = addPart(QStringLiteral("lblErrorCount"), QStringLiteral("Error"));
    m_errors->setToolTip(tr("Errors that applications have reported since the start"));
    m_warnings = addPart(QStringLiteral("lblWarningCount"), QStringLiteral("Warning"));
    m_warnings->setToolTip(tr("Warnings that applications have reported since the start"));

    m_update.setSingleShot(true);
    m_update.setInterval(updateTime);
    connect(&m_update, &QTimer::timeout, this, &MonitorStatus::showCounts);
    setClientCount(0);
    showCounts();
}

QLabel* MonitorStatus::addPart(const QString& objectName, const QString& icon)
{
    auto* part = new QWidget(m_bar);
    auto* layout = new QHBoxLayout(part);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* iconLabel = new QLabel(part);
    setIcon(*iconLabel, icon);
    auto* text = new QLabel(part);
    text->setObjectName(objectName);
    layout->addWidget(iconLabel);
    layout->addWidget(text);
    m_bar->addPermanentWidget(part);
    return text;
}

/// The message about the preferences file, and the button that hides it.
void MonitorStatus::addPreferencesPart()
{
    m_preferencesPart = new QWidget(m_bar);
    auto* layout = new QHBoxLayout(m_preferencesPart);
    layout->setContentsMargins(0, 0, 0, 0);
    m_preferences = new ElidedLabel(m_preferencesPart);
    m_preferences->setObjectName(QStringLiteral("lblPreferences"));
    layout->addWidget(m_preferences, 1);
    auto* hide = new QToolButton(m_preferencesPart);
    hide->setObjectName(QStringLiteral("btnHidePreferencesMessage"));
    // The desktop's own icon may be one for light windows only.
    hide->setIcon(QIcon(QStringLiteral(":/CorvaleResources/Close")));
    hide->setAutoRaise(true);
    hide->setFocusPolicy(Qt::TabFocus);
    hide->setToolTip(tr("Hide this message"));
    hide->setAccessibleName(hide->toolTip());
    layout->addWidget(hide);
    m_bar->addWidget(m_preferencesPart, 1);
    m_preferencesPart->hide();
    connect(hide, &QToolButton::clicked, this, [this] {
        m_preferencesEvent.clear();
        setPreferencesProblem({});
    });
}

void MonitorStatus::setPreferencesProblem(const QString& problem)
{
    m_preferencesProblem = problem;
    showPreferences();
}

void MonitorStatus::addPreferencesEvent(const QString& event)
{
    m_preferencesEvent = event;
    showPreferences();
}

void MonitorStatus::showPreferences()
{
    QStringList texts{m_preferencesProblem, m_preferencesEvent};
    texts.removeAll(QString());
    m_preferences->setText(texts.join(QLatin1Char(' ')));
    m_preferences->setToolTip(plainToolTip(texts.join(QLatin1Char('\n'))));
    m_preferencesPart->setVisible(!texts.isEmpty());
}

void MonitorStatus::setListening(const QString& path, const QString& problem)
{
    setIcon(
        *m_listeningIcon, problem.isEmpty() ? QStringLiteral("Connected") : QStringLiteral("Disconnected"));
    m_listening->setText(
        problem.isEmpty() ? tr("Listening for applications") : tr("Not listening: %1").arg(problem));
    const QString detail =
        problem.isEmpty() ? tr("Applications connect to \"%1\"").arg(path) : m_listening->text();
    m_listening->setToolTip(plainToolTip(detail));
    m_listeningIcon->setToolTip(m_listening->toolTip());
}

void MonitorStatus::setInstanceProblem(const QString& problem)
{
    const QString text = tr("A second start would not find this window: %1").arg(problem);
    m_instance->setText(text);
    m_instance->setToolTip(plainToolTip(text));
    m_instance->setVisible(!problem.isEmpty());
}

void MonitorStatus::setClientCount(std::size_t count)
{
    m_clientCount = count;
    m_clients->setText(count == 1 ? tr("1 client connected") : tr("%1 clients connected").arg(count));
}

void MonitorStatus::setSkippedProfiles(const std::vector<ProfileCatalogue::BrokenFile>& files)
{
    // There may be very many files, and reasons of any length.
    constexpr std::size_t mostShown = 20;
    constexpr qsizetype longestShown = 300;
    QStringList lines;
    for (std::size_t i = 0; i < std::min(files.size(), mostShown); ++i)
        lines.append(QStringLiteral("%1: %2")
                         .arg(QString::fromStdString(files[i].file), QString::fromStdString(files[i].reason))
                         .left(longestShown));
    if (files.size() > mostShown)
        lines.append(tr("and %1 more").arg(files.size() - mostShown));
    m_skipped->setText(files.size() == 1
            ? tr("Skipped profile %1").arg(lines.value(0))
            : tr("Skipped %1 profiles: %2").arg(files.size()).arg(lines.join(QStringLiteral("; "))));
    m_skipped->setToolTip(plainToolTip(lines.join(QLatin1Char('\n'))));
    m_skipped->setVisible(!files.empty());
}

void MonitorStatus::addErrors(int count)
{
    m_errorCount += static_cast<quint64>(count);
    showCountsSoon();
}

void MonitorStatus::addWarnings(int count)
{
    m_warningCount += static_cast<quint64>(count);
    showCountsSoon();
}

void MonitorStatus::showCountsSoon()
{
    if (!m_update.isActive())
        m_update.start();
}

void MonitorStatus::showCounts()
{
    const QLocale locale;
    m_errors->setText(m_errorCount == 1 ? tr("1 error") : tr("%1 errors").arg(locale.toString(m_errorCount)));
    m_warnings->setText(
        m_warningCount == 1 ? tr("1 warning") : tr("%1 warnings").arg(locale.toString(m_warningCount)));
}
