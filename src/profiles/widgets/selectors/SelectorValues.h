#pragma once

#include <QStringList>

#include <cstdint>
#include <initializer_list>

/// What the editor calls the values that profiles store. A text that no table knows is its own name.
namespace widgets {

/// "EGL_NONE" for "12344"; other numbers in plain decimal.
QString eglValueName(const QString& value);
/// "EGL_ALPHA_SIZE" for "12321".
QString eglAttribName(const QString& attrib);
/// "OpenGL ES 2.0" for "2".
QString apiName(const QString& version);
/// "GL_SAMPLES" for "samples".
QString capabilityName(const QString& xmlName);
/// "GL_RGBA" for "6408".
QString glValueName(const QString& value);
/// "GL_TRUE" for "1", "GL_FALSE" for "0".
QString glTruthName(const QString& value);

QStringList decimals(const QList<std::int32_t>& numbers);
/// The values of EGL enumerants; unknown names are left out.
QList<std::int32_t> eglNumbers(std::initializer_list<const char*> names);
/// The values of GL enumerants as unsigned decimal numbers; unknown names and further aliases are left out.
QStringList glDecimals(const QList<const char*>& names);

} // namespace widgets
