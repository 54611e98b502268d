#pragma once

#include "Preferences.h"

#include <QObject>
#include <QTimer>

class MonitorStatus;

/// Tells in the status bar what happens to the preferences file, and saves again what waits for another
/// process.
class PreferencesReporter : public QObject {
    Q_OBJECT

public:
    /// Both must live longer. A file that could not be read is told at once.
    PreferencesReporter(Preferences& preferences, MonitorStatus& status);
    /// Saves what still waits.
    ~PreferencesReporter() override;

private:
    void report(const SaveOutcome& outcome);

    Preferences& m_preferences;
    MonitorStatus& m_status;
    QTimer m_nextTry;
};
