#pragma once

#include "EsVersion.h"

#include <QString>
#include <QVariant>

/// What a row that the user has just added holds until they enter something: values that every implementation
/// may have.
namespace new_values {

/// For an EGL attribute by its enumerant; what the standard says of a config that was given nothing.
QVariant forAttribute(int attribute);

/// For a capability, or for each part of a compound one, by the element name; mostly the least that the
/// version requires.
QString forCapability(const QString& element, gl::EsVersion version);

} // namespace new_values
