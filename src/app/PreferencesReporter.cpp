#include "PreferencesReporter.h"

#include "FileErrors.h"
#include "MonitorStatus.h"

namespace {

/// Milliseconds between two tries to save while another process replaces the file.
constexpr int tryInterval = 50;

QString readable(const std::filesystem::path& path)
{
    return QString::fromStdString(platform::readablePath(path));
}

} // namespace

PreferencesReporter::PreferencesReporter(Preferences& preferences, MonitorStatus& status)
    : m_preferences(preferences)
    , m_status(status)
{
    m_nextTry.setSingleShot(true);
    m_nextTry.setInterval(tryInterval);
    connect(&m_nextTry, &QTimer::timeout, this, [this] { m_preferences.trySavingAgain(); });
    m_preferences.setSaveObserver([this](const SaveOutcome& outcome) { report(outcome); });
    if (m_preferences.isUnreadable())
        m_status.setPreferencesProblem(tr(
            "The preferences file \"%1\" could not be read, so the defaults are used. A copy of it is kept "
            "with the first change.")
                                           .arg(readable(m_preferences.path())));
}

PreferencesReporter::~PreferencesReporter()
{
    m_preferences.setSaveObserver({});
    m_preferences.finishSaving();
}

void PreferencesReporter::report(const SaveOutcome& outcome)
{
    if (m_preferences.isWaiting()) {
        m_nextTry.start();
        return;
    }
    if (const auto* failure = std::get_if<save_outcome::NotSaved>(&outcome)) {
        m_status.setPreferencesProblem(
            tr("The preferences could not be saved: %1").arg(QString::fromStdString(failure->reason)));
        return;
    }
    m_status.setPreferencesProblem({});
    if (const auto* unreadable = std::get_if<save_outcome::UnreadableSetAside>(&outcome))
        m_status.addPreferencesEvent(
            tr("The preferences file could not be read, so it was replaced. A copy of it is kept as \"%1\".")
                .arg(readable(unreadable->copy)));
}
