#pragma once

#include <QDialog>

class MutedErrors;
class QLabel;
class QPushButton;
class QTreeWidget;

/// Lists the kinds of errors that are muted, and shows those again that the user chooses.
class MutedErrorsDialog : public QDialog {
    Q_OBJECT

public:
    explicit MutedErrorsDialog(MutedErrors& muted, QWidget* parent = nullptr);

private:
    void fill();
    void showChosen();
    void updateButton();

    MutedErrors& m_muted;
    QTreeWidget* m_list;
    QLabel* m_hint;
    QLabel* m_file;
    QPushButton* m_show;
};
