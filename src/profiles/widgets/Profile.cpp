#include "widgets/Profile.h"

#include "EGLConfigTreeView.h"
#include "ESCapabilityTreeView.h"
#include "ESExtensionTreeView.h"
#include "PlainMessageBox.h"
#include "ProfileDataWrapper.h"
#include "ProfileFile.h"
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

Profile::Profile(ProfileController* controller, QWidget* parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::profile>())
    , m_capabilitiesView(new ESCapabilityTreeView(this))
    , m_extensionsView(new ESExtensionTreeView(this))
    , m_eglConfigsView(new EGLConfigTreeView(this))
    , m_controller(controller)
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
    const bool isAgain = shows(profile);
    restoreStored();
    setEnabled(true);
    m_profile = profile;
    m_isUnsavedNew = false;
    const auto shown = m_profile.lock();
    if (!shown) {
        clear();
        return;
    }
    std::array<QStringList, 3> open;
    for (std::size_t i = 0; isAgain && i < open.size(); ++i)
        open[i] = views()[i]->openRows();
    m_stored = shown->data();
    fillFields(*m_stored);
    m_model.reset();
    m_model = std::make_unique<models::Profile>(*shown);
    m_capabilitiesView->setModel(&m_model->capabilities());
    m_extensionsView->setModel(&m_model->extensions());
    m_eglConfigsView->setModel(&m_model->configs());
    for (std::size_t i = 0; i < open.size(); ++i)
        views()[i]->reopenRows(open[i]);
    if (m_mode == Mode::Modifying)
        modify();
    else
        view();
}

void Profile::clear()
{
    restoreStored();
    setEnabled(false);
    for (Field& field : m_fields)
        showText(field, field.edit == m_ui->editDevice ? QStringLiteral("None") : QString());
    for (ProfileTreeView* profileView : views())
        profileView->setModel(nullptr);
    m_model.reset();
    m_stored.reset();
    m_isUnsavedNew = false;
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
    m_ui->btnEdit->setVisible(m_isUnsavedNew || !m_profile.expired());
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

bool Profile::shows(const WeakProfile& profile) const
{
    return m_model && !m_isUnsavedNew && !m_profile.expired() && m_profile.lock() == profile.lock();
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

/// Takes back what a save that failed has left in the document.
void Profile::restoreStored()
{
    const auto shown = m_profile.lock();
    if (shown && shown->isWritable() && m_stored && !m_isUnsavedNew && !(shown->data() == *m_stored))
        *shown->edit() = *m_stored;
}

void Profile::discardPressed()
{
    const bool wasNew = m_isUnsavedNew;
    view();
    setProfile(m_profile);
    if (wasNew && m_newProfileDiscarded)
        m_newProfileDiscarded();
}

void Profile::savePressed()
{
    finishEdits();
    if (!save())
        return;
    fillFields(*m_stored);
    view();
}

void Profile::saveAsPressed()
{
    finishEdits();
    const auto shown = m_profile.lock();
    if (!m_controller || !m_stored)
        return;
    if (!saveCopy(shown && !m_isUnsavedNew ? m_controller->copyProfile(*shown) : copyOfStored()))
        return;
    fillFields(*m_stored);
    view();
}

bool Profile::save()
{
    if (!m_controller || !m_stored)
        return false;
    const auto shown = m_profile.lock();
    // What the panel shows has no file, or none any more; what stands in m_profile is another profile then.
    if (!shown || m_isUnsavedNew)
        return saveCopy(copyOfStored());
    return shown->isWritable() ? saveInPlace(shown) : saveCopy(m_controller->askForCopy(*shown));
}

Profile::Pointer Profile::copyOfStored()
{
    Pointer copy = m_controller->newProfile();
    copy->edit()->setFileName(m_stored->fileName());
    return copy;
}

bool Profile::saveCopy(const Pointer& copy)
{
    if (!copy)
        return false;
    const std::shared_ptr<ProfileData> document = copy->edit();
    const bool ready = writeInto(*document);
    const std::string directory = ready ? m_controller->directoryForSaving() : std::string();
    if (directory.empty() || !m_controller->saveAs(*document, directory)) {
        m_controller->forgetProfile(*copy);
        return false;
    }
    restoreStored();
    saved(copy, directory);
    return true;
}

bool Profile::saveInPlace(const std::shared_ptr<const ProfileDataWrapper>& profile)
{
    const std::string directory = m_controller->directoryForSaving();
    if (directory.empty() || !mayReplaceFile(*profile, directory))
        return false;
    const std::shared_ptr<ProfileData> document = profile->edit();
    if (!writeInto(*document) || !m_controller->save(*document, directory))
        return false;
    saved(profile, directory);
    return true;
}

bool Profile::mayReplaceFile(const ProfileDataWrapper& profile, const std::string& directory)
{
    const std::string& name = profile.data().fileName();
    if (name.empty() || m_controller->mayOverwrite(profile, profile_file::pathFor(directory, name).string()))
        return true;
    PlainMessageBox box(QMessageBox::Warning, tr("Save changes"),
        tr("The file '%1' is not the one that was loaded: another program has changed it, or it belongs to "
           "another "
           "profile.")
            .arg(fromUtf8(name)),
        tr("Replacing it drops what is in it. To keep both, cancel and save your changes with \"Save "
           "As...\"."),
        window(), QMessageBox::Cancel);
    const QAbstractButton* replace = box.addButton(tr("&Replace"), QMessageBox::DestructiveRole);
    box.setDefaultButton(QMessageBox::Cancel);
    box.exec();
    return box.clickedButton() == replace;
}

/// Makes the document what the panel shows, but for its file name. Says so when that cannot be done.
bool Profile::writeInto(ProfileData& document)
{
    const std::string fileName = document.fileName();
    ProfileData shown = *m_stored;
    const std::string reason = write(shown);
    if (!reason.empty()) {
        PlainMessageBox(QMessageBox::Critical, QStringLiteral("Corvale GUI"), tr("Failed to save file"),
            fromUtf8(reason), window())
            .exec();
        return false;
    }
    document = std::move(shown);
    document.setFileName(fileName);
    return true;
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

void Profile::saved(const std::shared_ptr<const ProfileDataWrapper>& profile, const std::string& directory)
{
    m_profile = profile;
    m_isUnsavedNew = false;
    m_stored = profile->data();
    fillFields(*m_stored);
    m_controller->reloadProfiles();
    m_controller->selectProfile(profile_file::pathFor(directory, profile->data().fileName()).string());
}

void Profile::newProfile()
{
    if (!m_controller)
        return;
    const WeakProfile before = m_profile;
    const Pointer added = m_controller->newProfile();
    setProfile(added);
    const std::string directory = m_controller->directoryForSaving();
    if (!directory.empty() && m_controller->saveAs(*added->edit(), directory)) {
        saved(added, directory);
        return;
    }
    // The panel goes on showing the new profile, which is in no file. It must not be saved over the old one.
    m_controller->forgetProfile(*added);
    m_profile = before;
    m_isUnsavedNew = true;
}

bool Profile::hasUnsavedEdits() const
{
    if (!m_model || !m_stored || m_mode == Mode::Viewing)
        return false;
    ProfileData edited = *m_stored;
    return !write(edited).empty() || !(edited == *m_stored);
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
