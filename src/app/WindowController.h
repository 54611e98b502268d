#pragma once

#include "ProfileController.h"

/// What the main window needs of the program around it.
class WindowController : public ProfileController {
public:
    /// Shows the preferences dialog, and reads the profiles again when it is closed.
    virtual void editPreferences() = 0;
};
