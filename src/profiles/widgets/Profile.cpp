#include "widgets/Profile.h"

#include "CurrentProfile.h"
#include "EGLConfigTreeView.h"
#include "ESCapabilityTreeView.h"
#include "ESExtensionTreeView.h"
#include "PlainMessageBox.h"
#include "ProfileDataWrapper.h"
#include "models/Profile.h"
#include "ui_Profile.h"

#include <QLabel>
#include <QPushButton>

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
{
    m_ui->setupUi(this);
    m_fields = {{
        {m_ui->lblDevice, m_ui->editDevice, &ProfileData::device, &ProfileData::setDevice, {}},
        {m_ui->lblRenderer, m_ui->editRenderer, &ProfileData::renderer, &ProfileData::setRenderer, {}},
        {m_ui->lblVendor, m_ui->editVendor, &ProfileData::vendor, &ProfileData::setVendor, {}},
    }};
    for (const Field& field : m_fields)
        field.edit->installEventFilter(this);
    setUpViews();
    retranslateUi();
    if (parent)
        m_ui->profileInfoSplitter->setSizes({parent->width() / 2, parent->width() / 2});
    connect(m_ui->btnDiscard, SIGNAL(pressed()), SLOT(discardPressed()));
    connect(m_ui->btnEdit, SIGNAL(pressed()), SLOT(editPressed()));
    connect(m_ui->btnSave, SIGNAL(pressed()), SLOT(savePressed()));
    connect(m_ui->btnSaveAs, SIGNAL(pressed()), SLOT(saveAsPressed()));
    connect(&m_current, &models::CurrentProfile::shownChanged, this, &Profile::setProfile);
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
    m_ui->btnDiscard->setShortcut(Qt::CTRL | Qt::Key_D);
    for (QPushButton* button : {m_ui->btnEdit, m_ui->btnSave, m_ui->btnSaveAs, m_ui->btnDiscard})
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
    setEnabled(true);
    const auto shown = profile.lock();
    if (!shown) {
        clear();
        return;
    }
    fillFields(shown->data());
    m_model.reset();
    m_model = std::make_unique<models::Profile>(*shown);
    m_capabilitiesView->setModel(&m_model->capabilities());
    m_extensionsView->setModel(&m_model->extensions());
    m_eglConfigsView->setModel(&m_model->configs());
    if (m_mode == Mode::Modifying)
        modify();
    else
        view();
}

/// Shows the same profile again, as it is stored, at the same place.
void Profile::dropEdits()
{
    const auto listed = m_current.lastListed().lock();
    if (!m_model || !listed) {
        setProfile(m_current.lastListed());
        return;
    }
    m_model->refresh(listed->data());
    fillFields(listed->data());
    if (m_mode == Mode::Modifying)
        modify();
    else
        view();
}

void Profile::clear()
{
    setEnabled(false);
    for (Field& field : m_fields)
        showText(field, field.edit == m_ui->editDevice ? QStringLiteral("None") : QString());
    for (ProfileTreeView* profileView : views())
        profileView->setModel(nullptr);
    m_model.reset();
    view();
}

void Profile::setEditable(bool editable)
{
    if (m_model)
        m_model->setEditable(editable);
    for (ProfileTreeView* profileView : views())
        profileView->setEditable(editable);
}

void Profile::view()
{
    m_mode = Mode::Viewing;
    for (Field& field : m_fields) {
        field.edit->setFrame(false);
        field.edit->setReadOnly(true);
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
    for (Field& field : m_fields) {
        field.edit->setFrame(true);
        field.edit->setReadOnly(false);
        field.edit->show();
        field.label->show();
    }
    m_ui->btnEdit->hide();
    for (QPushButton* button : {m_ui->btnDiscard, m_ui->btnSave, m_ui->btnSaveAs})
        button->show();
    setEditable(true);
}

void Profile::finishEdits()
{
    // The keyboard presses a button without taking the focus from an editor.
    for (ProfileTreeView* profileView : views())
        profileView->finishEdit();
}

void Profile::editPressed()
{
    modify();
    m_ui->editDevice->setFocus();
}

void Profile::discardPressed()
{
    view();
    m_current.discard();
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
    finishEdits();
    if (!m_current.stored() || !m_model)
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

bool Profile::hasUnsavedEdits() const
{
    const ProfileData* stored = m_current.stored();
    if (!m_model || !stored || m_mode == Mode::Viewing)
        return false;
    ProfileData edited = *stored;
    return !write(edited).empty() || !(edited == *stored);
}

bool Profile::mayLeave()
{
    finishEdits();
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

} // namespace widgets
