#include "ClientTabWidget.h"

#include "Client.h"
#include "ClientInterface.h"
#include "ConsoleSaver.h"
#include "PlainToolTip.h"

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

ClientTabWidget::ClientTabWidget(QWidget* parent)
    : QTabWidget(parent)
{
    setTabBar(new ClientTabBar(this));
    setTabsClosable(true);
    setDocumentMode(true);
    setElideMode(Qt::ElideRight);
    auto* close = new QShortcut(QKeySequence::Close, this);
    close->setContext(Qt::WidgetWithChildrenShortcut);
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
    if (autoClose)
        closeFinishedTabs();
    closePlaceholder();
    auto* page = new ClientInterface(client, count(), font, this);
    const QIcon connected(QStringLiteral(":/CorvaleResources/Connected"));
    setCurrentIndex(addTab(page, connected, QStringLiteral("<unknown>")));
    return page;
}

void ClientTabWidget::closeFinishedTabs()
{
    int i = 0;
    while (i < count()) {
        const ClientInterface* page = pageAt(i);
        if (page && page->state() == ClientInterface::State::Finished && !page->saver().isBusy()) {
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
    removePage(index);
    if (count() == 0)
        addPlaceholder();
}

void ClientTabWidget::removePage(int index)
{
    QWidget* page = widget(index);
    removeTab(index);
    auto* clientPage = qobject_cast<ClientInterface*>(page);
    if (clientPage && clientPage->saver().isBusy())
        clientPage->closeOnceSaved();
    else
        delete clientPage;
}

bool ClientTabWidget::isSaving() const
{
    const QList<ConsoleSaver*> savers = findChildren<ConsoleSaver*>();
    return std::any_of(
        savers.begin(), savers.end(), [](const ConsoleSaver* saver) { return saver->isSaving(); });
}

void ClientTabWidget::addPlaceholder()
{
    auto* page = new ClientInterface(nullptr, 0, QFontDatabase::systemFont(QFontDatabase::FixedFont), this);
    page->setEnabled(false);
    const int index = addTab(page, QStringLiteral("Disconnected"));
    const auto side = static_cast<QTabBar::ButtonPosition>(
        style()->styleHint(QStyle::SH_TabBar_CloseButtonPosition, nullptr, tabBar()));
    if (QWidget* closeButton = tabBar()->tabButton(index, side))
        closeButton->resize(0, 0);
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

void ClientTabWidget::showTitle(const ClientInterface& page)
{
    // An ampersand in a tab's text would mark a key.
    const QString title = page.title();
    setTabText(page.index(), QString(title).replace(QLatin1Char('&'), QStringLiteral("&&")));
    // The index is the one of the tab's creation, so the title may be on another tab; the tool tip never is.
    setTabToolTip(indexOf(&page), plainToolTip(title));
}

void ClientTabWidget::finish(const Client* client, const QString& text)
{
    if (ClientInterface* page = pageOf(client)) {
        page->finish(text);
        setTabIcon(indexOf(page), QIcon(QStringLiteral(":/CorvaleResources/Disconnected")));
    }
}
