#include "WindowState.h"

#include "Client.h"
#include "ClientInterface.h"
#include "ErrorListView.h"
#include "MainWindow.h"
#include "Preferences.h"
#include "widgets/Profile.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QScreen>
#include <QSplitter>
#include <QTabWidget>

namespace {

/// The window's size when nothing is remembered: two thirds of the screen, and this at most.
constexpr QSize largestFirstSize(1200, 800);

QByteArray bytesOf(const property_list::Data& data)
{
    return {data.data(), static_cast<qsizetype>(data.size())};
}

property_list::Data dataOf(const QByteArray& bytes)
{
    return {bytes.begin(), bytes.end()};
}

/// Has a box show a setting, and the setting follow the user.
void bind(QCheckBox* box, const Setting<bool>& setting, Preferences& preferences)
{
    box->setChecked(preferences.get(setting));
    QObject::connect(
        box, &QCheckBox::clicked, box, [&setting, &preferences](bool on) { preferences.set(setting, on); });
}

} // namespace

WindowState::WindowState(MainWindow& window, Preferences& preferences)
    : QObject(&window)
    , m_window(window)
    , m_preferences(preferences)
    , m_pages(window.findChild<QTabWidget*>(QStringLiteral("mainTabWidget")))
    , m_errorListColumns(bytesOf(preferences.get(settings::errorListColumns)))
{
    const auto* panel = window.findChild<widgets::Profile*>();
    m_profileSplitter = panel->findChild<QSplitter*>(QStringLiteral("profileInfoSplitter"));
    m_profileListsSplitter = panel->findChild<QSplitter*>(QStringLiteral("splitter"));
    restoreGeometry();
    m_profileSplitter->restoreState(bytesOf(preferences.get(settings::profileSplitter)));
    m_profileListsSplitter->restoreState(bytesOf(preferences.get(settings::profileListsSplitter)));
    const QString page = QString::fromStdString(preferences.get(settings::windowPage));
    if (auto* chosen = m_pages->findChild<QWidget*>(page); chosen && m_pages->indexOf(chosen) >= 0)
        m_pages->setCurrentWidget(chosen);
    bind(window.findChild<QCheckBox*>(QStringLiteral("chkAutoClose")), settings::autoCloseTabs, preferences);
}

void WindowState::restoreGeometry()
{
    // Of a screen that is gone, the window comes back to one that is there.
    if (m_window.restoreGeometry(bytesOf(m_preferences.get(settings::windowGeometry))))
        return;
    const QSize screen = m_window.screen()->availableSize();
    m_window.resize((screen * 2 / 3).boundedTo(largestFirstSize));
}

void WindowState::follow(ClientInterface& page)
{
    QHeaderView* header = page.findChild<ErrorListView*>()->horizontalHeader();
    header->restoreState(m_errorListColumns);
    connect(header, &QHeaderView::sectionResized, this,
        [this, header] { m_errorListColumns = header->saveState(); });
    bind(page.findChild<QCheckBox*>(QStringLiteral("chkWarnings")), settings::showWarnings, m_preferences);
    bind(page.findChild<QCheckBox*>(QStringLiteral("chkErrors")), settings::showErrors, m_preferences);
}

void WindowState::save()
{
    const std::string page = m_pages->currentWidget()->objectName().toStdString();
    const property_list::Data geometry = dataOf(m_window.saveGeometry());
    const property_list::Data profile = dataOf(m_profileSplitter->saveState());
    const property_list::Data lists = dataOf(m_profileListsSplitter->saveState());
    const property_list::Data columns = dataOf(m_errorListColumns);
    if (page == m_preferences.get(settings::windowPage)
        && geometry == m_preferences.get(settings::windowGeometry)
        && profile == m_preferences.get(settings::profileSplitter)
        && lists == m_preferences.get(settings::profileListsSplitter)
        && columns == m_preferences.get(settings::errorListColumns))
        return;
    m_preferences.set({{settings::windowPage, page}, {settings::windowGeometry, geometry},
        {settings::profileSplitter, profile}, {settings::profileListsSplitter, lists},
        {settings::errorListColumns, columns}});
}
