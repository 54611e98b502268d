#pragma once

/// What a getter or setter of the preference store says. The numbers are fixed.
enum class ResultCode : int {
    Success = 0,
    /// The key path names no value.
    NoValue = 1,
    /// A setter was given a key path without a component.
    EmptyKeyPath = 2,
    /// The value is of another type, or its text does not convert; also what a setter says to a value that
    /// the file cannot hold.
    WrongType = 3,
    /// Nothing has been loaded.
    NoDocument = 4,
};

/// A name for diagnostics, null for codes that have none. The table is older than the meanings above.
const char* printableName(ResultCode code);
