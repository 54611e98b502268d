#pragma once

#include <QCompleter>

class ErrorListModel;
class QLineEdit;
class QStringListModel;

/// Completes the word at the cursor of a filter's line with fields, and with the functions and codes of the
/// newest rows of a list.
class ErrorFilterCompleter : public QCompleter {
    Q_OBJECT

public:
    explicit ErrorFilterCompleter(QLineEdit* edit);

    void setErrors(const ErrorListModel* errors) { m_errors = errors; }
    /// Shows what the word at the cursor can become, also where it is empty.
    void offer();

private:
    /// From where to where the word at the cursor goes, without a sign before it.
    struct Word {
        qsizetype start;
        qsizetype end;
    };

    Word word() const;
    void offerForWord(bool isAsked);
    void fill();
    void put(const QString& completion);

    QLineEdit* m_edit;
    QStringListModel* m_words;
    const ErrorListModel* m_errors = nullptr;
    int m_filledFor = -1; ///< Rows of the list when the words were collected.
};
