#include "ClientTabWidget.h"

#include "Client.h"
#include "ClientInterface.h"
#include "ClientListButton.h"
#include "PlainToolTip.h"
#include "UnseenBadge.h"
#include "UnseenErrors.h"

#include <QApplication>
#include <QFontDatabase>
#include <QMouseEvent>
#include <QShortcut>
#include <QStyle>

#include <algorithm>

void ClientTabWidget::ClientTabBar::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::MiddleButton)
        Q_EMIT tabCloseRequested(tabAt(event->position().toPoint()));
    QTabBar::mouseReleaseEvent(event);
}

QSize ClientTabWidget::ClientTabBar::tabSizeHint(int index) const
{
    constexpr int longestTitle = 38; // average characters
    const QSize size = QTabBar::tabSizeHint(index);
    const int widest = fontMetrics().averageCharWidth() * longestTitle + iconSize().width();
    return {std::min(size.width(), widest), size.height()};
}

/// Tabs never shrink: a title that says nothing is worse than one that is scrolled to.
QSize ClientTabWidget::ClientTabBar::minimumTabSizeHint(int index) const
{
    return tabSizeHint(index);
}

ClientTabWidget::ClientTabWidget(QWidget* parent)
    : QTabWidget(parent)
{
    setTabBar(new ClientTabBar(this));
    setTabsClosable(true);
    setDocumentMode(true);
    setElideMode(Qt::ElideMiddle);
    setUsesScrollButtons(true);
    setCornerWidget(new ClientListButton(this));
    // Works as long as this widget is visible.
    auto* close = new QShortcut(QKeySequence::Close, this);
    connect(close, &QShortcut::activated, this, [this] { Q_EMIT tabCloseRequested(currentIndex()); });
    addPlaceholder();
}

ClientInterface* ClientTabWidget::pageAt(int index) const
{
    return qobject_cast<ClientInterface*>(widget(index));
}

ClientInterface* ClientTabWidget::pageOf(const Client* client) const
{
    if (!client)
        return nullptr;
    for (int i = 0; i < count(); ++i) {
        ClientInterface* page = pageAt(i);
        if (page && page->client() == client)
            return page;
    }
    return nullptr;
}

ClientInterface* ClientTabWidget::addClient(Client* client, const QFont& font, bool autoClose)
{
    const bool hadFocus = isAncestorOf(QApplication::focusWidget());
    if (autoClose)
        closeFinishedTabs();
    closePlaceholder();
    auto* page = new ClientInterface(client, count(), font, this);
    const QIcon connected(QStringLiteral(":/CorvaleResources/Connected"));
    const int index = addTab(page, connected, page->title());
    tabBar()->setTabData(index, static_cast<int>(Connection::Connected));
    auto* badge = new UnseenBadge(page->unseenErrors(), *tabBar(), index);
    connect(&page->unseenErrors(), &UnseenErrors::changed, badge,
        [this, badge, page] { badge->showOn(indexOf(page)); });
    setCurrentIndex(index);
    if (hadFocus && !isAncestorOf(QApplication::focusWidget()))
        focusCurrent(page->subPage());
    return page;
}

ClientInterface* ClientTabWidget::addSession(Client* client, const QFont& font, const QString& session)
{
    ClientInterface* page = addClient(client, font, false);
    page->showSession(session);
    setTabIcon(indexOf(page), QIcon(QStringLiteral(":/CorvaleResources/Ended")));
    tabBar()->setTabData(indexOf(page), static_cast<int>(Connection::Ended));
    return page;
}

void ClientTabWidget::closeFinishedTabs()
{
    int i = 0;
    while (i < count()) {
        const ClientInterface* page = pageAt(i);
        if (page && page->state() == ClientInterface::State::Finished && page->session().isEmpty()
            && !page->isBusy()) {
            removePage(i);
            i = 0;
        } else {
            ++i;
        }
    }
}

void ClientTabWidget::closePlaceholder()
{
    const ClientInterface* only = count() == 1 ? pageAt(0) : nullptr;
    if (only && only->state() == ClientInterface::State::Fresh)
        removePage(0);
}

void ClientTabWidget::closeTabAt(int index)
{
    if (index < 0 || index >= count())
        return;
    // The system would hand the focus to the next widget of the window, such as the list of profiles.
    const bool hadFocus = index == currentIndex() && isAncestorOf(QApplication::focusWidget());
    const int subPage = hadFocus ? pageAt(index)->subPage() : 0;
    removePage(index);
    if (count() == 0)
        addPlaceholder();
    if (hadFocus)
        focusCurrent(subPage);
}

void ClientTabWidget::focusCurrent(int subPage)
{
    ClientInterface* page = pageAt(currentIndex());
    if (page && page->isEnabled())
        page->showSubPage(subPage);
    else
        tabBar()->setFocus();
}

void ClientTabWidget::removePage(int index)
{
    QWidget* page = widget(index);
    removeTab(index);
    auto* clientPage = qobject_cast<ClientInterface*>(page);
    if (clientPage && clientPage->isBusy())
        clientPage->closeOnceSaved();
    else
        delete clientPage;
}

bool ClientTabWidget::isSaving() const
{
    const QList<ClientInterface*> pages = findChildren<ClientInterface*>();
    return std::any_of(
        pages.begin(), pages.end(), [](const ClientInterface* page) { return page->isSaving(); });
}

void ClientTabWidget::addPlaceholder()
{
    auto* page = new ClientInterface(nullptr, 0, QFontDatabase::systemFont(QFontDatabase::FixedFont), this);
    page->setEnabled(false);
    page->setConnectedWithoutTab(m_connectedCount);
    const int index = addTab(page, tr("Disconnected"));
    const auto side = static_cast<QTabBar::ButtonPosition>(
        style()->styleHint(QStyle::SH_TabBar_CloseButtonPosition, nullptr, tabBar()));
    if (QWidget* closeButton = tabBar()->tabButton(index, side))
        closeButton->resize(0, 0);
}

void ClientTabWidget::setConnectedCount(std::size_t count)
{
    m_connectedCount = count;
    ClientInterface* first = pageAt(0);
    if (first && first->state() == ClientInterface::State::Fresh && !first->client())
        first->setConnectedWithoutTab(count);
}

void ClientTabWidget::setPid(const Client* client, PID_TYPE pid)
{
    if (ClientInterface* page = pageOf(client)) {
        page->setPid(pid);
        showTitle(*page);
    }
}

void ClientTabWidget::setName(const Client* client, const QString& name)
{
    if (ClientInterface* page = pageOf(client)) {
        page->setName(name);
        showTitle(*page);
    }
}

void ClientTabWidget::setDevice(const Client* client, const QString& device)
{
    if (ClientInterface* page = pageOf(client)) {
        page->setDevice(device);
        showTitle(*page);
    }
}

void ClientTabWidget::setEndText(const Client* client, const QString& text)
{
    if (ClientInterface* page = pageOf(client)) {
        page->setEndText(text);
        showTitle(*page);
    }
}

void ClientTabWidget::showTitle(const ClientInterface& page)
{
    // An ampersand in a tab's text would mark a key.
    const QString title = page.title();
    setTabText(page.index(), QString(title).replace(QLatin1Char('&'), QStringLiteral("&&")));
    // The index is the one of the tab's creation, so the title may be on another tab; the tool tip never is.
    setTabToolTip(indexOf(&page), plainToolTip(page.description()));
}

void ClientTabWidget::finish(const Client* client, const QString& text, Connection connection)
{
    ClientInterface* page = pageOf(client);
    if (!page)
        return;
    page->finish(text);
    const int index = indexOf(page);
    setTabIcon(index,
        QIcon(connection == Connection::Ended ? QStringLiteral(":/CorvaleResources/Ended")
                                              : QStringLiteral(":/CorvaleResources/Disconnected")));
    tabBar()->setTabData(index, static_cast<int>(connection));
}

ClientTabWidget::Connection ClientTabWidget::connectionAt(int index) const
{
    return static_cast<Connection>(tabBar()->tabData(index).toInt());
}
