#pragma once

#include "TextTable.h"

#include <QObject>
#include <QPointer>

#include <memory>

class QWidget;

/// Writes a table to a file that the user chooses, as CSV, JSON lines or Markdown by its suffix. It writes in
/// steps of the event loop, and the file has the whole table or what was in it before.
class TableExport : public QObject {
    Q_OBJECT

public:
    /// The dialog belongs to a widget.
    explicit TableExport(QWidget* parent);
    ~TableExport() override;

    /// Asks for the file, with a name without suffix that is offered, and calls for the table then. Does
    /// nothing while the last export is going on.
    void ask(const QString& title, const QString& name, std::function<TextTable()> table);
    /// True while a file is being written.
    bool isSaving() const { return m_job != nullptr; }
    /// True from the question for a file until it is saved.
    bool isBusy() const { return isSaving() || m_dialog; }
    void save(const QString& path, const TextTable& table);
    /// Gives up with a reason, and leaves the file as it was; does nothing where nothing is being written.
    void giveUp(const QString& reason);

Q_SIGNALS:
    /// It is not busy any more.
    void done();
    /// What has become of the export, for the user.
    void ended(bool saved, const QString& text);

private:
    struct Job;

    void step();
    void finish(bool saved, const QString& text);

    QWidget* m_widget;
    std::unique_ptr<Job> m_job;
    QPointer<QObject> m_dialog; ///< The question for a file.
};
