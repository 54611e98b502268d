#pragma once

#include "Message.h"

#include <QMetaType>

/// Process id of a connected application.
using PID_TYPE = quint32;

Q_DECLARE_METATYPE(ui::messages::Message)

/// Registers the types above under the names by which signals carry them. Calling it again does no harm.
void registerClientMetaTypes();
