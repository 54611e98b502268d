#include "WindowState.h"

#include "Client.h"
#include "ClientInterface.h"
#include "ContextInterface.h"
#include "ErrorList.h"
#include "ErrorListView.h"
#include "MainWindow.h"
#include "Preferences.h"
#include "widgets/Profile.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QScreen>
#include <QSplitter>
#include <QTabWidget>
#include <QTableView>

#include <utility>
#include <vector>

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
    , m_contextSplitter(bytesOf(preferences.get(settings::contextSplitter)))
    , m_contextColumns(bytesOf(preferences.get(settings::contextColumns)))
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
    auto* list = page.findChild<ErrorListView*>();
    list->restoreColumns(m_errorListColumns);
    QHeaderView* header = list->horizontalHeader();
    connect(header, &QHeaderView::sectionResized, this, [this, header] {
        // A folded list has a column more, which comes and goes.
        if (header->count() == error_list::ColumnCount)
            m_errorListColumns = header->saveState();
    });
    bind(page.findChild<QCheckBox*>(QStringLiteral("chkWarnings")), settings::showWarnings, m_preferences);
    bind(page.findChild<QCheckBox*>(QStringLiteral("chkErrors")), settings::showErrors, m_preferences);
    page.setContextFollower([this](ContextInterface& context) { followContext(context); });
}

void WindowState::followContext(ContextInterface& page)
{
    auto* splitter = page.findChild<QSplitter*>();
    splitter->restoreState(m_contextSplitter);
    connect(splitter, &QSplitter::splitterMoved, this,
        [this, splitter] { m_contextSplitter = splitter->saveState(); });
    QHeaderView* header = page.findChild<QTableView*>()->horizontalHeader();
    header->restoreState(m_contextColumns);
    // The last column fills the table; as long as the user leaves the others alone, they follow their texts.
    connect(header, &QHeaderView::sectionResized, this, [this, header](int column) {
        if (column < header->count() - 1)
            m_contextColumns = header->saveState();
    });
}

void WindowState::save()
{
    std::vector<Preferences::Change> changes;
    const auto keep = [this, &changes](const auto& setting, auto value) {
        if (value != m_preferences.get(setting))
            changes.emplace_back(setting, std::move(value));
    };
    keep(settings::windowPage, m_pages->currentWidget()->objectName().toStdString());
    keep(settings::windowGeometry, dataOf(m_window.saveGeometry()));
    keep(settings::profileSplitter, dataOf(m_profileSplitter->saveState()));
    keep(settings::profileListsSplitter, dataOf(m_profileListsSplitter->saveState()));
    keep(settings::errorListColumns, dataOf(m_errorListColumns));
    keep(settings::contextSplitter, dataOf(m_contextSplitter));
    keep(settings::contextColumns, dataOf(m_contextColumns));
    if (!changes.empty())
        m_preferences.set(changes);
}
