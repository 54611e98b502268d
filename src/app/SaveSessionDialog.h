#pragma once

#include <QDialog>

class QRadioButton;

/// Asks whether the session of one client is to be saved or that of all.
class SaveSessionDialog : public QDialog {
    Q_OBJECT

public:
    /// The client's title may be empty, where there is none; then only all can be saved.
    SaveSessionDialog(const QString& client, std::size_t count, QWidget* parent);

    bool isForAll() const;

private:
    QRadioButton* m_all;
};
