#include "ClientListButton.h"

#include "Client.h"
#include "ClientInterface.h"
#include "ClientTabWidget.h"
#include "ErrorList.h"
#include "ErrorListModel.h"

#include <QMenu>

namespace {

QString stateText(ClientTabWidget::Connection connection)
{
    switch (connection) {
    case ClientTabWidget::Connection::Connected:
        return ClientListButton::tr("connected");
    case ClientTabWidget::Connection::Ended:
        return ClientListButton::tr("ended");
    case ClientTabWidget::Connection::Lost:
        break;
    }
    return ClientListButton::tr("lost");
}

/// "3 errors, 1 warning".
QString problemText(const ErrorListModel& model)
{
    int warnings = 0;
    for (int row = 0; row < model.rowCount(); ++row)
        warnings += model.severity(row) == error_list::SeverityWarning ? 1 : 0;
    const int errors = model.rowCount() - warnings;
    const QString errorText =
        errors == 1 ? ClientListButton::tr("1 error") : ClientListButton::tr("%1 errors").arg(errors);
    const QString warningText =
        warnings == 1 ? ClientListButton::tr("1 warning") : ClientListButton::tr("%1 warnings").arg(warnings);
    return errorText + QStringLiteral(", ") + warningText;
}

} // namespace

ClientListButton::ClientListButton(ClientTabWidget* tabs)
    : QToolButton(tabs)
    , m_tabs(tabs)
    , m_list(new QMenu(this))
{
    setObjectName(QStringLiteral("btnClientList"));
    setAccessibleName(tr("List of all clients"));
    setToolTip(tr("All clients with their states and problems (Alt+C)"));
    setShortcut(Qt::ALT | Qt::Key_C);
    setArrowType(Qt::DownArrow);
    setAutoRaise(true);
    // A menu of the button's own would give it a second arrow.
    connect(this, &QToolButton::clicked, this, &ClientListButton::open);
}

void ClientListButton::open()
{
    fill();
    const QPoint corner = mapToGlobal(rect().bottomRight());
    m_list->popup({corner.x() + 1 - m_list->sizeHint().width(), corner.y()});
}

void ClientListButton::fill()
{
    constexpr qsizetype longestTitle = 80;
    m_list->clear();
    for (int i = 0; i < m_tabs->count(); ++i) {
        const ClientInterface* page = m_tabs->pageAt(i);
        if (!page || page->state() == ClientInterface::State::Fresh)
            continue;
        QString title = page->title();
        if (title.size() > longestTitle)
            title = title.left(longestTitle) + QChar(0x2026);
        const QString text = tr("%1: %2, %3\t%4")
                                 .arg(QString::number(i + 1), title, stateText(m_tabs->connectionAt(i)),
                                     problemText(page->errorListModel()));
        QAction* action = m_list->addAction(
            m_tabs->tabIcon(i), QString(text).replace(QLatin1Char('&'), QStringLiteral("&&")));
        action->setCheckable(true);
        action->setChecked(i == m_tabs->currentIndex());
        connect(action, &QAction::triggered, page,
            [this, page] { m_tabs->setCurrentIndex(m_tabs->indexOf(page)); });
    }
    if (m_list->isEmpty())
        m_list->addAction(tr("No client has connected yet"))->setEnabled(false);
}
