#include "widgets/Profile.h"

#include "CurrentProfile.h"
#include "EGLConfigTreeView.h"
#include "ESCapabilityTreeView.h"
#include "ESExtensionTreeView.h"
#include "FindBar.h"
#include "HiddenElements.h"
#include "ItemFind.h"
#include "PlainMessageBox.h"
#include "ProfileChanges.h"
#include "ProfileDataWrapper.h"
#include "ProfileNotices.h"
#include "TreePlace.h"
#include "models/Profile.h"
#include "ui_Profile.h"

#include <QLabel>
#include <QPushButton>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace widgets {

namespace {

QString fromUtf8(const std::string& text)
{
    return QString::fromStdString(text);
}

} // namespace

Profile::Profile(models::CurrentProfile& current, QWidget* parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::profile>())
    , m_capabilitiesView(new ESCapabilityTreeView(this))
    , m_extensionsView(new ESExtensionTreeView(this))
    , m_eglConfigsView(new EGLConfigTreeView(this))
    , m_current(current)
    , m_comparison(new QTimer(this))
{
    m_ui->setupUi(this);
    m_fields = {{
        {m_ui->lblDevice, m_ui->editDevice, &ProfileData::device, &ProfileData::setDevice, {}},
        {m_ui->lblRenderer, m_ui->editRenderer, &ProfileData::renderer, &ProfileData::setRenderer, {}},
        {m_ui->lblVendor, m_ui->editVendor, &ProfileData::vendor, &ProfileData::setVendor, {}},
    }};
    for (const Field& field : m_fields) {
        field.edit->installEventFilter(this);
        connect(field.edit, &QLineEdit::textChanged, this, &Profile::noteChange);
    }
    // Many rows can change at once.
    m_comparison->setSingleShot(true);
    m_comparison->setInterval(0);
    connect(m_comparison, &QTimer::timeout, this, [this] {
        m_current.setEdited(differsFromStored());
        showWhetherEmpty();
    });
    setUpViews();
    auto* inTrees = new ItemFind(this);
    inTrees->setViews({m_capabilitiesView, m_extensionsView, m_eglConfigsView});
    m_ui->profileLayout->addWidget(new FindBar(inTrees, this));
    setUpNotices();
    retranslateUi();
    if (parent)
        m_ui->profileInfoSplitter->setSizes({parent->width() / 2, parent->width() / 2});
    connect(m_ui->btnDiscard, SIGNAL(pressed()), SLOT(discardPressed()));
    connect(m_ui->btnEdit, SIGNAL(pressed()), SLOT(editPressed()));
    connect(m_ui->btnSave, SIGNAL(pressed()), SLOT(savePressed()));
    connect(m_ui->btnSaveAs, SIGNAL(pressed()), SLOT(saveAsPressed()));
    connect(&m_current, &models::CurrentProfile::shownChanged, this, &Profile::showOther);
    connect(&m_current, &models::CurrentProfile::editsDiscarded, this, &Profile::dropEdits);
    m_current.setEditor(this);
    view();
}

Profile::~Profile() = default;

void Profile::setUpViews()
{
    m_ui->capabilitiesLayout->addWidget(m_capabilitiesView);
    m_ui->extensionsLayout->addWidget(m_extensionsView);
    m_ui->eglConfigsLayout->addWidget(m_eglConfigsView);
    m_capabilitiesView->setObjectName(QStringLiteral("capabilitiesView"));
    m_extensionsView->setObjectName(QStringLiteral("extensionsView"));
    m_eglConfigsView->setObjectName(QStringLiteral("eglConfigsView"));
    m_ui->lblProfileCapabilities->setBuddy(m_capabilitiesView);
    m_ui->lblProfileExtensions->setBuddy(m_extensionsView);
    m_ui->lblProfileInfoEglConfigs->setBuddy(m_eglConfigsView);
    // For assistive tools, views do not go by the label whose buddy they are.
    for (const QLabel* label :
        {m_ui->lblProfileCapabilities, m_ui->lblProfileExtensions, m_ui->lblProfileInfoEglConfigs})
        label->buddy()->setAccessibleName(label->text());
    for (ProfileTreeView* profileView : views())
        profileView->setHeaderHidden(true);
}

void Profile::retranslateUi()
{
    m_ui->retranslateUi(this);
    // A button takes its shortcut from its text, so these are set again.
    m_ui->btnEdit->setShortcut(Qt::CTRL | Qt::Key_E);
    m_ui->btnSave->setShortcut(QKeySequence::Save);
    m_ui->btnSaveAs->setShortcut(Qt::CTRL | Qt::SHIFT | Qt::Key_S);
    for (QPushButton* button : {m_ui->btnEdit, m_ui->btnSave, m_ui->btnSaveAs})
        button->setToolTip(QStringLiteral("%1 (%2)").arg(
            button->toolTip(), button->shortcut().toString(QKeySequence::NativeText)));
}

bool Profile::eventFilter(QObject* watched, QEvent* event)
{
    // To move its cursor, a line takes keys that belong to buttons, such as Ctrl+E, also when it is
    // read-only.
    const auto* edit = qobject_cast<const QLineEdit*>(watched);
    const bool isTaken = edit && edit->isReadOnly() && event->type() == QEvent::ShortcutOverride;
    return isTaken || QWidget::eventFilter(watched, event);
}

std::array<ProfileTreeView*, 3> Profile::views() const
{
    return {m_capabilitiesView, m_extensionsView, m_eglConfigsView};
}

void Profile::showText(Field& field, const QString& text)
{
    field.edit->setText(text);
    field.edit->setCursorPosition(0);
    // An edit cannot hold every text, so what it shows is compared with what it showed.
    field.shown = field.edit->text();
    field.label->setVisible(!text.isEmpty());
    field.edit->setVisible(!text.isEmpty());
}

void Profile::fillFields(const ProfileData& document)
{
    for (Field& field : m_fields)
        showText(field, fromUtf8((document.*field.get)()));
}

void Profile::setProfile(const WeakProfile& profile)
{
    const auto shown = profile.lock();
    if (!shown) {
        clear();
        return;
    }
    fillFields(shown->data());
    m_notices->showHidden(hiddenElements(shown->data()));
    showModel(std::make_unique<models::Profile>(*shown));
    if (m_mode == Mode::Modifying)
        modify();
    else
        view();
}

/// Shows the profile that another one gives way to, with all that was taken from it.
void Profile::showOther(const WeakProfile& profile)
{
    m_discarded.clear();
    setProfile(profile);
}

void Profile::showModel(std::unique_ptr<models::Profile> model)
{
    m_model = std::move(model);
    m_capabilitiesView->setModel(&m_model->capabilities());
    m_extensionsView->setModel(&m_model->extensions());
    m_eglConfigsView->setModel(&m_model->configs());
    for (const ProfileTreeView* profileView : views()) {
        const QAbstractItemModel* tree = profileView->model();
        connect(tree, &QAbstractItemModel::rowsRemoved, this, &Profile::showNotices, Qt::UniqueConnection);
        connect(tree, &QAbstractItemModel::rowsRemoved, this, &Profile::noteChange, Qt::UniqueConnection);
        connect(tree, &QAbstractItemModel::rowsInserted, this, &Profile::noteChange, Qt::UniqueConnection);
        connect(tree, &QAbstractItemModel::dataChanged, this, &Profile::noteChange, Qt::UniqueConnection);
    }
    showNotices();
}

/// Shows the same profile again, as it is stored, at the same place.
void Profile::dropEdits()
{
    std::array<TreePlace, 3> places;
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (views()[i]->model())
            places[i] = TreePlace(*views()[i]);
    }
    setProfile(m_current.lastListed());
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (views()[i]->model())
            places[i].restore(*views()[i]);
    }
}

void Profile::clear()
{
    for (Field& field : m_fields)
        showText(field, field.edit == m_ui->editDevice ? tr("None") : QString());
    for (ProfileTreeView* profileView : views())
        profileView->setModel(nullptr);
    m_model.reset();
    m_notices->showHidden({});
    m_notices->showEmpty(false);
    view();
    showNotices();
}

void Profile::setEditable(bool editable)
{
    if (m_model)
        m_model->setEditable(editable);
    for (ProfileTreeView* profileView : views())
        profileView->setEditable(editable);
}

/// Has the page compared with the file as soon as the change is complete.
void Profile::noteChange()
{
    m_comparison->start();
}

void Profile::view()
{
    m_mode = Mode::Viewing;
    noteChange();
    for (Field& field : m_fields) {
        field.edit->setFrame(false);
        field.edit->setReadOnly(true);
        // On a dark page, another background looks like an entry.
        QPalette seeThrough;
        seeThrough.setColor(QPalette::Base, Qt::transparent);
        field.edit->setPalette(seeThrough);
    }
    for (QPushButton* button : {m_ui->btnEdit, m_ui->btnSave, m_ui->btnSaveAs, m_ui->btnDiscard})
        button->hide();
    const bool isNew = m_current.state() == models::CurrentProfile::State::UnsavedNew;
    m_ui->btnEdit->setVisible(isNew || !m_current.lastListed().expired());
    setEditable(false);
}

void Profile::modify()
{
    m_mode = Mode::Modifying;
    noteChange();
    for (Field& field : m_fields) {
        field.edit->setFrame(true);
        field.edit->setReadOnly(false);
        field.edit->setPalette({});
        field.edit->show();
        field.label->show();
    }
    m_ui->btnEdit->hide();
    for (QPushButton* button : {m_ui->btnDiscard, m_ui->btnSave, m_ui->btnSaveAs})
        button->show();
    setEditable(true);
}

/// False where an open editor has an entry that cannot be stored; the editor stays open and says why.
bool Profile::finishEdits()
{
    // The buttons are pressed without taking the focus from an editor.
    const auto all = views();
    return std::all_of(all.begin(), all.end(), [](ProfileTreeView* view) { return view->finishEdit(); });
}

void Profile::editPressed()
{
    modify();
    m_ui->editDevice->setFocus();
}

void Profile::discardPressed()
{
    finishEdits();
    std::optional<DiscardedEdits> taken = takeEdits();
    view();
    std::optional<models::CurrentProfile::Unlisted> unlisted = m_current.discard();
    if (taken) {
        taken->unlisted = std::move(unlisted);
        m_discarded.push_back(*std::move(taken));
    }
    showNotices();
}

void Profile::savePressed()
{
    saveBy(&models::CurrentProfile::save);
}

void Profile::saveAsPressed()
{
    saveBy(&models::CurrentProfile::saveAs);
}

/// Hands the edits over and goes on to viewing when they were saved. Says so when they cannot be written.
void Profile::saveBy(bool (models::CurrentProfile::*save)(const ProfileData&))
{
    if (!finishEdits() || !m_current.stored() || !m_model)
        return;
    ProfileData edited = *m_current.stored();
    const std::string reason = write(edited);
    if (!reason.empty()) {
        PlainMessageBox(QMessageBox::Critical, QStringLiteral("Corvale GUI"), tr("Failed to save file"),
            fromUtf8(reason), window())
            .exec();
        return;
    }
    if (!(m_current.*save)(edited))
        return;
    if (m_current.stored()) {
        fillFields(*m_current.stored());
        m_notices->showHidden(hiddenElements(*m_current.stored()));
        forgetTaken();
        m_model->refresh(*m_current.stored());
    }
    view();
}

/// Puts what was changed into a copy of what is stored; returns why it cannot, as models::Profile::writeTo()
/// does.
std::string Profile::write(ProfileData& document) const
{
    for (const Field& field : m_fields) {
        if (field.edit->text() != field.shown)
            (document.*field.set)(field.edit->text().toStdString());
    }
    return m_model->writeTo(document);
}

void Profile::newProfile()
{
    if (mayLeave())
        m_current.newProfile();
}

void Profile::showNew(const ProfileData& content)
{
    if (!mayLeave())
        return;
    m_current.showNew(content);
    modify();
}

bool Profile::hasUnsavedEdits()
{
    return !finishEdits() || differsFromStored();
}

bool Profile::differsFromStored() const
{
    const ProfileData* stored = m_current.stored();
    if (!m_model || !stored || m_mode == Mode::Viewing)
        return false;
    ProfileData edited = *stored;
    return !write(edited).empty() || !(edited == *stored);
}

bool Profile::mayLeave()
{
    if (!hasUnsavedEdits())
        return true;
    PlainMessageBox box(QMessageBox::Question, tr("Save changes"),
        tr("The profile '%1' has changes that are not saved.").arg(m_ui->editDevice->text()),
        tr("Save them?"), window(), QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
    box.setDefaultButton(QMessageBox::Save);
    const int answer = box.exec();
    if (answer == QMessageBox::Save)
        savePressed();
    else if (answer == QMessageBox::Discard)
        discardPressed();
    return answer != QMessageBox::Cancel && !hasUnsavedEdits();
}

void Profile::setUpNotices()
{
    constexpr int belowTheTexts = 1;
    m_notices = new ProfileNotices(*m_ui->profileLayout, belowTheTexts, this);
    connect(m_notices, &ProfileNotices::discardedWanted, this, &Profile::bringBackEdits);
    connect(m_notices, &ProfileNotices::deletedWanted, this, &Profile::bringBackRows);
    const auto modifyFirst = [this] {
        if (m_mode == Mode::Viewing)
            editPressed();
    };
    connect(m_notices, &ProfileNotices::apiWanted, this, [this, modifyFirst] {
        modifyFirst();
        m_extensionsView->addAPITriggered();
    });
    connect(m_notices, &ProfileNotices::configWanted, this, [this, modifyFirst] {
        modifyFirst();
        m_eglConfigsView->addConfigTriggered();
    });
    // With the focus, a button that is pressed would end an open editor before it can refuse.
    for (QPushButton* button : {m_ui->btnSave, m_ui->btnSaveAs, m_ui->btnDiscard})
        button->setFocusPolicy(Qt::TabFocus);
}

/// Says what to do with a profile that has nothing to show yet.
void Profile::showWhetherEmpty()
{
    const auto all = views();
    m_notices->showEmpty(m_model && std::all_of(all.begin(), all.end(), [](const ProfileTreeView* view) {
        return view->model() && view->model()->rowCount() == 0;
    }));
}

/// Offers what can be brought back. Without a profile nothing else of the panel can be used.
void Profile::showNotices()
{
    if (m_discarded.empty())
        m_notices->hideDiscarded();
    else
        m_notices->offerDiscarded(m_discarded.back().changes);
    m_notices->offerDeleted(m_model && m_mode == Mode::Modifying ? m_model->removedRowCount() : 0);
    setEnabled(m_model || !m_discarded.empty());
    m_ui->profileInfoSplitter->setEnabled(m_model != nullptr);
    for (int i = 0; i < m_ui->profileRow->count(); ++i)
        m_ui->profileRow->itemAt(i)->widget()->setEnabled(m_model != nullptr);
}

/// Takes the edits out of the panel, which must show something else then; nothing where there are none.
std::optional<Profile::DiscardedEdits> Profile::takeEdits()
{
    if (!differsFromStored())
        return std::nullopt;
    DiscardedEdits taken;
    ProfileData edited = *m_current.stored();
    if (write(edited).empty())
        taken.changes = countChanges(*m_current.stored(), edited);
    for (std::size_t i = 0; i < m_fields.size(); ++i)
        taken.texts[i] = m_fields[i].edit->text();
    taken.model = std::move(m_model);
    return taken;
}

void Profile::bringBackEdits()
{
    if (m_discarded.empty())
        return;
    if (m_discarded.back().unlisted && hasUnsavedEdits()) {
        m_notices->refuseDiscarded();
        return;
    }
    DiscardedEdits back = std::move(m_discarded.back());
    m_discarded.pop_back();
    // What has been changed meanwhile can be brought back in its turn.
    finishEdits();
    if (std::optional<DiscardedEdits> taken = takeEdits())
        m_discarded.push_back(*std::move(taken));
    if (back.unlisted)
        m_current.takeBackDiscard(*back.unlisted);
    fillFields(*m_current.stored());
    m_notices->showHidden(hiddenElements(*m_current.stored()));
    for (std::size_t i = 0; i < m_fields.size(); ++i)
        m_fields[i].edit->setText(back.texts[i]);
    showModel(std::move(back.model));
    modify();
    showNotices();
    m_capabilitiesView->setFocus();
}

void Profile::bringBackRows()
{
    if (!m_model || !finishEdits())
        return;
    const QString taken = m_model->restoreRemovedRows();
    showNotices();
    if (!taken.isEmpty())
        m_notices->refuseDeleted(taken);
}

/// After a save, what was taken from this profile before it is not offered any more.
void Profile::forgetTaken()
{
    std::erase_if(m_discarded, [](const DiscardedEdits& edits) { return !edits.unlisted; });
    m_model->forgetRemovedRows();
    showNotices();
}

} // namespace widgets
