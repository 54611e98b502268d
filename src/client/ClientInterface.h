#pragma once

#include "ConsolePace.h"
#include "MetaTypes.h"

#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

class Client;
class Console;
class ConsoleMargin;
class ConsoleSaver;
class ContextInterface;
class ErrorListActions;
class ErrorListFilterProxyModel;
class ErrorListModel;
class KeptFilters;
class MutedErrors;
class TableExport;
class UnseenErrors;
class QAction;

namespace Ui {
class ClientInterface;
}

/// The tab page of one connected application: its wireframe switch, console, error list and rendering
/// contexts.
class ClientInterface : public QWidget {
    Q_OBJECT

public:
    enum class State {
        Fresh = 0, ///< Just made, or the page that stands in for "no application".
        Live = 1,
        Finished = 2,
    };

    /// A page for a client, or for none; index is the tab's index at its creation.
    ClientInterface(Client* client, int index, const QFont& font, QWidget* parent = nullptr);
    ~ClientInterface() override;

    Client* client() const { return m_client; }
    int index() const { return m_index; }
    State state() const { return m_state; }
    void setLive();

    /// For the page of a client that is read from a session: says which one, and offers nothing that would
    /// be sent to it.
    void showSession(const QString& which);
    /// As above; empty for the page of a connected client.
    const QString& session() const { return m_session; }

    /// Which device the application sees in place of the machine, and how its process ended, as far as known.
    void setDevice(const QString& device) { m_device = device; }
    void setEndText(const QString& text) { m_endText = text; }
    /// More than the title: one line each for session, device and end.
    QString description() const;

    void setName(const QString& name) { m_name = name; }
    void setPid(PID_TYPE pid) { m_pid = pid; }
    /// The tab's title: the application's name in quotes, where it has sent one, and its PID; "<unknown>"
    /// before it has sent either.
    QString title() const;

    /// Has the page that stands in for "no application" say how many are connected whose tabs are closed.
    void setConnectedWithoutTab(std::size_t count);

    /// Errors and warnings that have come since the page was last to be seen.
    const UnseenErrors& unseenErrors() const { return *m_unseenErrors; }
    /// Whether errors that come from now on are news; those of a session that is read at once are none.
    void setErrorsAreNews(bool areNews);
    const ErrorListModel& errorListModel() const { return *m_errorListModel; }
    Console& console() { return *m_console; }
    ConsoleMargin& consoleMargin() { return *m_margin; }
    const ConsoleSaver& saver() const { return *m_saver; }
    /// Writes rows of the error list to files.
    const TableExport& rowExport() const;
    /// True while a file is being written.
    bool isSaving() const;
    /// True from the question for a file until it is saved.
    bool isBusy() const;

    /// Puts an action, which is not the page's own, into the menu of the console.
    void addConsoleAction(QAction* action);

    /// Calls a function with the page of each context that comes from now on.
    using ContextFollower = std::function<void(ContextInterface&)>;
    void setContextFollower(const ContextFollower& follower) { m_contextFollower = follower; }

    /// Offers filters for the error list that are kept with names. They must live longer.
    void setKeptFilters(KeptFilters* filters);
    /// Hides errors and warnings of these kinds, and lets the user change them. They must live longer.
    void setMutedErrors(MutedErrors* muted);

    /// The index of the page that is shown: console, error list or contexts.
    int subPage() const;
    /// Shows one of these pages and gives it the focus.
    void showSubPage(int index);

    /// For the page of a closed tab while it is busy: it takes no more records, and destroys itself when it
    /// is done.
    void closeOnceSaved();

public Q_SLOTS:
    /// Shows a record of types 3 to 10; ignores any other.
    void receive(const ui::messages::Message&);
    void fontChanged(const QFont&);
    /// Ends the session with a last line in the console. What is shown stays until the tab is closed.
    void finish(const QString& text);
    void wireframeStateChanged(int);
    void uncheckConsoleAutoScroll();
    void uncheckErrorListAutoScroll();
    void errorListWarningsStateChanged(int state);
    void errorListErrorsStateChanged(int state);
    /// Opens a pop-up with the whole text of a cell, counted as the filter shows them, at a global position.
    void showErrorListItemContents(int, int, QPoint);

protected:
    void changeEvent(QEvent* event) override;

private:
    void setUpConsole(const QFont& font);
    void setUpErrorList();
    void setUpContexts();
    void setUpFind();
    void makeConnections();

    void colourContextsHint();
    void setUpJumps();
    void showInConsole(int row);
    void showInErrorList();
    void updateErrorListHint();
    QString emptyListHint() const;
    void showConsoleMenu(const QPoint& position);
    void addContext(const ui::messages::Message& message);
    void removeOldestContexts();
    ConsolePace::Reading reading() const;
    std::optional<std::int64_t> recordTime() const;
    void addErrorListRow(qint32 severity, const ui::messages::Message& message, const QString& code,
        const QString& description, const QString& function);

    std::unique_ptr<Ui::ClientInterface> m_ui;
    QPointer<Client> m_client;
    int m_index;
    QString m_name;
    QString m_session;
    QString m_device;
    QString m_endText;
    std::optional<PID_TYPE> m_pid;
    State m_state = State::Fresh;
    ContextFollower m_contextFollower;
    Console* m_console;
    ConsoleMargin* m_margin;
    ConsoleSaver* m_saver;
    ErrorListModel* m_errorListModel;
    ErrorListFilterProxyModel* m_errorListFilter;
    ErrorListActions* m_errorListActions = nullptr;
    UnseenErrors* m_unseenErrors;
};
