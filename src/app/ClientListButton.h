#pragma once

#include <QToolButton>

class ClientTabWidget;

/// The button beside the tabs that lists all clients with their states and counts of errors; the current one
/// can be chosen from the list.
class ClientListButton : public QToolButton {
    Q_OBJECT

public:
    explicit ClientListButton(ClientTabWidget* tabs);

private:
    void open();
    void fill();

    ClientTabWidget* m_tabs;
    QMenu* m_list;
};
