#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>

class ErrorListFilterProxyModel;
class ErrorListView;
class MutedErrors;
class TableExport;
class QAction;
class QKeySequence;
class QPushButton;

/// What can be done with the rows of an error list, as actions of its view and of the page around it: going
/// to errors and frames, and muting kinds.
class ErrorListActions : public QObject {
    Q_OBJECT

public:
    /// The keys work in the page, and the view offers the actions in its menu. Both live at least as long.
    ErrorListActions(ErrorListView& view, ErrorListFilterProxyModel& filter, QWidget& page);

    /// Offers to mute kinds, and has a button tell how many rows are muted. They must live longer.
    void setMuted(MutedErrors* muted, QPushButton* button);

    /// Offers to show rows in the console by a function that takes a row of the list.
    void setRowOpener(const std::function<void(int sourceRow)>& open);
    /// Goes to a row of the list. False where it is not shown.
    bool goToSourceRow(int sourceRow);
    /// Goes to the first row of these frames, or to one of the nearest frame.
    void goToFrames(int first, int last);

    const TableExport& rowExport() const { return *m_export; }

Q_SIGNALS:
    /// A text that the status bar is to show.
    void statusMessage(const QString& text);

private:
    QAction* add(const QString& text, const QKeySequence& key, const std::function<void()>& what);
    void goToError(int step);
    void askForFrame();
    void addTableActions();
    void exportRows(bool all);
    void muteChosen();
    void showMuted();
    void updateMutedButton();

    ErrorListView& m_view;
    ErrorListFilterProxyModel& m_filter;
    QWidget& m_page;
    QAction* m_mute = nullptr;
    TableExport* m_export;
    MutedErrors* m_muted = nullptr;
    QPointer<QPushButton> m_mutedButton;
};
