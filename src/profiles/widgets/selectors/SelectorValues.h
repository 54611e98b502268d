#pragma once

#include <QStringList>

#include <cstdint>
#include <initializer_list>

/// The values behind the choices of a selector, as profiles store them.
namespace widgets {

QStringList decimals(const QList<std::int32_t>& numbers);
/// The values of EGL enumerants; unknown names are left out.
QList<std::int32_t> eglNumbers(std::initializer_list<const char*> names);
/// The values of GL enumerants as unsigned decimal numbers; unknown names and further aliases are left out.
QStringList glDecimals(const QList<const char*>& names);

} // namespace widgets
