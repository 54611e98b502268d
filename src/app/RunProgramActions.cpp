#include "RunProgramActions.h"

#include "CurrentProfile.h"
#include "NoticeBar.h"
#include "ProfileCatalogue.h"
#include "ProfileChooser.h"
#include "ProfileDataWrapper.h"
#include "RunProgramDialog.h"

#include <QAction>
#include <QBoxLayout>
#include <QMenu>
#include <QPushButton>

RunProgramActions::RunProgramActions(Preferences& preferences, const models::CurrentProfile& profile,
    QMenu* menu, QAction* before, QWidget* page)
    : QObject(menu->window())
    , m_window(menu->parentWidget()->window())
    , m_profile(profile)
    , m_recent(preferences)
{
    setUpActions(menu, before);
    setUpNotice(page);
    connect(&m_runner, &ProgramRunner::countChanged, this, &RunProgramActions::updateActions);
    connect(&m_runner, &ProgramRunner::failed, this, &RunProgramActions::tellFailure);
    connect(&m_runner, &ProgramRunner::ended, this, &RunProgramActions::statusMessage);
    connect(&m_runner, &ProgramRunner::started, this,
        [this](const QString& name) { Q_EMIT statusMessage(tr("\"%1\" is started.").arg(name)); });
    updateActions();
}

void RunProgramActions::setUpActions(QMenu* menu, QAction* before)
{
    m_run = new QAction(tr("R&un Program..."), this);
    m_run->setObjectName(QStringLiteral("actionRun_Program"));
    m_run->setShortcut(QStringLiteral("Ctrl+R"));
    connect(m_run, &QAction::triggered, this, &RunProgramActions::ask);
    m_runAgain = new QAction(tr("Run A&gain"), this);
    m_runAgain->setObjectName(QStringLiteral("actionRun_Again"));
    m_runAgain->setShortcut(QStringLiteral("F5"));
    connect(m_runAgain, &QAction::triggered, this, &RunProgramActions::runAgain);
    m_stop = new QAction(tr("&Stop"), this);
    m_stop->setObjectName(QStringLiteral("actionStop"));
    m_stop->setShortcut(QStringLiteral("Shift+F5"));
    connect(m_stop, &QAction::triggered, this, [this] {
        Q_EMIT statusMessage(tr("The programs that were run from this window are asked to end."));
        m_runner.stopAll();
    });
    menu->insertActions(before, {m_run, m_runAgain, m_stop});
    menu->insertSeparator(before);
}

void RunProgramActions::setUpNotice(QWidget* page)
{
    m_notice = new widgets::NoticeBar(QStringLiteral("noticeNotRun"), page);
    const QPushButton* change = m_notice->addButton(QStringLiteral("btnRunOtherwise"), tr("R&un Program..."),
        tr("Change what is to be run and try again"));
    const QPushButton* hide =
        m_notice->addButton(QStringLiteral("btnHideNotRun"), tr("Hi&de"), tr("Hide this message"));
    connect(change, &QPushButton::clicked, this, &RunProgramActions::ask);
    connect(hide, &QPushButton::clicked, m_notice, [this] { m_notice->setText({}); });
    if (auto* layout = qobject_cast<QBoxLayout*>(page->layout()))
        layout->insertWidget(0, m_notice);
}

void RunProgramActions::ask()
{
    auto* dialog = new RunProgramDialog(m_recent.runs(), profiles(), m_window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog] { run(dialog->run()); });
    dialog->open();
}

QList<RunProfile> RunProgramActions::profiles() const
{
    const auto chosen = m_profile.chosen();
    const QString name = chosen ? ProfileChooser::itemText(*chosen) : tr("Host");
    QList<RunProfile> profiles{{tr("%1 (chosen in the window)").arg(name), {}},
        {tr("Host (no profile)"), ProgramRun::hostProfile()}};
    const ProfileCatalogue* catalogue = m_profile.catalogue();
    if (!catalogue)
        return profiles;
    for (const auto* list : {&catalogue->builtinProfiles(), &catalogue->userProfiles()}) {
        for (const auto& profile : *list) {
            if (const std::string key = profile->key(); !key.empty())
                profiles.append({ProfileChooser::itemText(*profile), QString::fromStdString(key)});
        }
    }
    return profiles;
}

void RunProgramActions::run(const ProgramRun& run)
{
    Q_EMIT pageWanted();
    m_notice->setText({});
    m_recent.add(run);
    ProgramRun started = run;
    if (started.profile.isEmpty()) {
        const auto chosen = m_profile.chosen();
        started.profile = chosen ? QString::fromStdString(chosen->key()) : ProgramRun::hostProfile();
    }
    m_runner.start(started);
    updateActions();
}

void RunProgramActions::runAgain()
{
    const QList<ProgramRun> runs = m_recent.runs();
    if (!runs.isEmpty())
        run(runs.first());
}

void RunProgramActions::tellFailure(const QString& text)
{
    m_notice->setText(text);
    Q_EMIT statusMessage(text);
}

void RunProgramActions::updateActions()
{
    const QList<ProgramRun> runs = m_recent.runs();
    m_runAgain->setEnabled(!runs.isEmpty());
    m_runAgain->setStatusTip(runs.isEmpty() ? QString() : runs.first().command);
    m_stop->setEnabled(m_runner.isRunning());
}
