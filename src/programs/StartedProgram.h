#pragma once

#include <QByteArray>
#include <QProcess>

/// A launcher that runs a program for the user, in a session of its own: what the terminal of this process
/// sends does not reach it. It goes on when this object is destroyed.
class StartedProgram : public QProcess {
    Q_OBJECT

public:
    explicit StartedProgram(QObject* parent);
    ~StartedProgram() override;

    /// Asks the program to end, and ends it where it does not within three seconds. Processes that it has
    /// started and left behind end as well.
    void stop();
    /// What the launcher itself has said about its failure to run the program; empty if it has not failed.
    QString launcherFailure() const;

private:
    void keepErrors();
    void kill();

    QByteArray m_errors; ///< The end of what stands on standard error.
    qint64 m_group = 0;
    bool m_isStopping = false;
    bool m_isKilled = false;
};
