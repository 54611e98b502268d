#pragma once

#include "KeyTables.h"

#include <QModelIndex>
#include <QSet>
#include <QStringList>

/// What may still be added to a row of a profile tree, found out by the keys that the rows below it have.
namespace widgets {

/// The stored keys of the rows below a row, of the top-level rows for none.
QSet<QString> keysBelow(const QAbstractItemModel* model, const QModelIndex& parent);

/// The EGL attributes that a config with these keys lacks, ascending.
std::set<std::int32_t> unusedAttribs(const QSet<QString>& used);
/// The APIs that no top-level row stands for, ascending.
std::set<esapi::API> unusedAPIs(const QAbstractItemModel* model);
/// The capabilities that an API row lacks, by element name.
std::set<ESCapabilityKey::XMLName> unusedCapabilities(const QModelIndex& api);
/// The extensions of the catalogue that an API row lacks, alphabetically and with "GL_".
QStringList unusedExtensions(const QModelIndex& api);

} // namespace widgets
