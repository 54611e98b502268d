#include "HostNotice.h"

#include "CurrentProfile.h"

#include <QComboBox>
#include <QPushButton>

HostNotice::HostNotice(models::CurrentProfile& current, QComboBox& chooser, QWidget* page)
    : NoticeBar(QStringLiteral("noticeHost"), page)
{
    const QPushButton* choose =
        addButton(QStringLiteral("btnChooseProfile"), tr("Ch&oose..."), tr("Open the list of devices"));
    const QPushButton* create =
        addButton(QStringLiteral("btnNewProfile"), tr("Ne&w Profile..."), tr("Make a profile of your own"));
    connect(choose, &QPushButton::clicked, &chooser, [&chooser] {
        chooser.setFocus();
        chooser.showPopup();
    });
    connect(create, &QPushButton::clicked, this, &HostNotice::newProfileWanted);
    const auto show = [this, &current] {
        showFor(current);
    };
    connect(&current, &models::CurrentProfile::shownChanged, this, show);
    connect(&current, &models::CurrentProfile::discardTakenBack, this, show);
    show();
}

void HostNotice::showFor(const models::CurrentProfile& current)
{
    const bool isHost = current.state() == models::CurrentProfile::State::None;
    setText(isHost ? tr("\"Host\" is this computer's own hardware, so there is nothing to change. "
                        "Choose a device that applications are to find instead, or make one.")
                   : QString());
}
