#pragma once

#include "ProfileDataWrapper.h"

#include <QMetaType>

#include <memory>

/// A reference to a profile that does not keep it alive, as item data and as a signal's argument.
using WeakProfile = std::weak_ptr<const ProfileDataWrapper>;

Q_DECLARE_METATYPE(std::weak_ptr<const ProfileDataWrapper>)

/// Registers the type above under exactly the name it is declared with. Calling it again does no harm.
void registerProfileMetaTypes();
