#pragma once

#include "MetaTypes.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>
#include <memory>

class Console;
class QWidget;

/// Saves the complete console as plain text or HTML to a file that the user chooses, bit by bit, so that the
/// window stays alive.
class ConsoleSaver : public QObject {
    Q_OBJECT

public:
    /// Saves what the console's spool has kept. Dialogs belong to the window.
    ConsoleSaver(Console* console, QWidget* window);
    ~ConsoleSaver() override;

    /// Asks for a file, and proposes a name for it with that of the application, which may be empty, its PID
    /// and the time.
    void ask(const QString& name, PID_TYPE pid);
    /// Saves to a file, as HTML where its name ends so.
    void save(const QString& path);
    /// Whether plain text is saved with the time and the frame of each entry.
    void setSavesStamps(bool saves) { m_savesStamps = saves; }
    bool isSaving() const { return m_job != nullptr; }
    /// True from the question for a file until the file is saved.
    bool isBusy() const { return isSaving() || m_dialog; }

Q_SIGNALS:
    void busyChanged(bool busy);
    /// Emitted last when saving has ended. The file is complete where it was saved.
    void ended(bool saved);

private:
    struct Job;

    void step();
    void finish(bool saved, const QString& text);

    Console* m_console;
    QWidget* m_window;
    bool m_savesStamps = false;
    QPointer<QObject> m_dialog; ///< The question for a file.
    std::unique_ptr<Job> m_job;
};
