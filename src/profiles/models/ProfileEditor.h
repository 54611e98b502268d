#pragma once

/// What has to be known of the editor before it shows another profile.
class ProfileEditor {
public:
    virtual ~ProfileEditor() = default;

    /// Whether it holds edits that are in no file. An entry that is being typed is finished first; one that
    /// cannot be stored is an edit as well.
    virtual bool hasUnsavedEdits() = 0;

    /// Asks what to do with unsaved edits, if there are any, and does it. False when the user wants to go on
    /// editing, or when saving failed.
    virtual bool mayLeave() = 0;
};
