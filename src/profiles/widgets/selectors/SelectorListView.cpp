#include "SelectorListView.h"

#include "GenericValueSelectorItemDelegate.h"

#include <QApplication>

namespace widgets {

bool SelectorListView::matches(int row) const
{
    const QModelIndex item = model()->index(row, modelColumn(), rootIndex());
    const auto* delegate = qobject_cast<const QStyledItemDelegate*>(itemDelegate());
    if (!delegate || GenericValueSelectorItemDelegate::isSeparator(item))
        return false;
    const QString name = delegate->displayText(item.data(), locale());
    if (name.startsWith(m_typed, Qt::CaseInsensitive))
        return true;
    for (const QLatin1String prefix : {QLatin1String("GL_"), QLatin1String("EGL_")}) {
        if (name.startsWith(prefix) && name.mid(prefix.size()).startsWith(m_typed, Qt::CaseInsensitive))
            return true;
    }
    return false;
}

void SelectorListView::keyboardSearch(const QString& search)
{
    const int rows = model() ? model()->rowCount(rootIndex()) : 0;
    if (search.isEmpty() || rows == 0)
        return;
    if (!m_sinceKey.isValid() || m_sinceKey.hasExpired(QApplication::keyboardInputInterval()))
        m_typed.clear();
    m_sinceKey.start();
    // A letter that is typed again goes on to the next item, a further letter may stay.
    if (m_typed != search)
        m_typed += search;
    const int first = std::max(currentIndex().row(), 0) + (m_typed.size() == search.size() ? 1 : 0);
    for (int i = 0; i < rows; ++i) {
        const int row = (first + i) % rows;
        if (matches(row)) {
            setCurrentIndex(model()->index(row, modelColumn(), rootIndex()));
            return;
        }
    }
}

} // namespace widgets
