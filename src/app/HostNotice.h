#pragma once

#include "NoticeBar.h"

class QComboBox;

namespace models {
class CurrentProfile;
}

/// Says above the empty page of a profile what "Host" is, and what else there is to choose.
class HostNotice : public widgets::NoticeBar {
    Q_OBJECT

public:
    /// "Choose..." opens the list of the chooser.
    HostNotice(models::CurrentProfile& current, QComboBox& chooser, QWidget* page);

Q_SIGNALS:
    void newProfileWanted();

private:
    void showFor(const models::CurrentProfile& current);
};
