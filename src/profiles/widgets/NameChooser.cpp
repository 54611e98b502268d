#include "NameChooser.h"

#include "RefusalTip.h"

#include <QComboBox>
#include <QCompleter>
#include <QLineEdit>

#include <utility>

namespace widgets {

NameChooser::NameChooser(
    const QString& label, const QStringList& names, RefusalFor refusalFor, QWidget* parent)
    : QInputDialog(parent)
    , m_refusalFor(std::move(refusalFor))
{
    setLabelText(label);
    setComboBoxItems(names);
    setComboBoxEditable(true);
    if (!names.isEmpty())
        setTextValue(names.first());
    auto* list = findChild<QComboBox*>();
    list->setInsertPolicy(QComboBox::NoInsert);
    list->completer()->setCompletionMode(QCompleter::PopupCompletion);
    list->completer()->setFilterMode(Qt::MatchContains);
    list->completer()->setCaseSensitivity(Qt::CaseInsensitive);
    // What is typed replaces the suggestion.
    list->lineEdit()->selectAll();
}

void NameChooser::done(int result)
{
    const QString refusal = result == Accepted ? m_refusalFor(textValue()) : QString();
    if (refusal.isEmpty())
        QInputDialog::done(result);
    else
        showRefusal(findChild<QComboBox*>(), refusal);
}

} // namespace widgets
