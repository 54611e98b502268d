#include "ErrorListSortMenu.h"

#include <QActionGroup>
#include <QHeaderView>

ErrorListSortMenu::ErrorListSortMenu(QHeaderView& header, QWidget* parent)
    : QMenu(tr("&Sort By"), parent)
    , m_header(header)
{
    setObjectName(QStringLiteral("menuSortErrors"));
    connect(this, &QMenu::aboutToShow, this, &ErrorListSortMenu::fill);
}

void ErrorListSortMenu::fill()
{
    clear();
    delete findChild<QActionGroup*>();
    const int current = m_header.sortIndicatorSection();
    auto* group = new QActionGroup(this);
    const auto add = [this, current, group](int column, const QString& text) {
        QAction* action = group->addAction(addAction(text, this, [this, column] { sortBy(column); }));
        action->setCheckable(true);
        action->setChecked(column == current);
    };
    for (int place = 0; place < m_header.count(); ++place) {
        const int column = m_header.logicalIndex(place);
        const QString title = m_header.model()->headerData(column, Qt::Horizontal).toString();
        add(column, QStringLiteral("&%1 %2").arg(place + 1).arg(title));
    }
    add(-1, tr("Order of &Arrival"));
}

/// The same column once more sorts from behind.
void ErrorListSortMenu::sortBy(int column)
{
    const bool isAgain =
        column == m_header.sortIndicatorSection() && m_header.sortIndicatorOrder() == Qt::AscendingOrder;
    m_header.setSortIndicator(column, isAgain && column >= 0 ? Qt::DescendingOrder : Qt::AscendingOrder);
}
