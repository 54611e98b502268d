#pragma once

#include "ErrorFilter.h"
#include "ErrorFilterParser.h"

#include <QWidget>

class ErrorFilterCompleter;
class ErrorListModel;
class KeptFilters;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;

/// The line in which a user writes the filter of an error list, with a menu of filters that are kept, and the
/// fault of a filter below it. While there is a fault, the last filter without one holds on.
class ErrorFilterBar : public QWidget {
    Q_OBJECT

public:
    explicit ErrorFilterBar(QWidget* parent = nullptr);

    /// Completes with the names that are in a list.
    void setErrors(const ErrorListModel* errors);
    /// Offers filters that are kept with their names. They must live as long.
    void setKeptFilters(KeptFilters* filters);
    QString text() const;

Q_SIGNALS:
    void filterChanged(const ErrorFilter& filter);

protected:
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setUpEdit();
    void setUpMenu();
    void read(const QString& text);
    void showFault(const ErrorFilterFault& fault);
    void clearFault();
    void underline(qsizetype position, qsizetype length);
    void fillMenu();
    void keepFilter();

    QLineEdit* m_edit;
    QPushButton* m_keptButton;
    QMenu* m_menu;
    QLabel* m_fault;
    ErrorFilterCompleter* m_completer;
    KeptFilters* m_kept = nullptr;
    QString m_readText;
};
