#pragma once

#include "GlTypes.h"

#include <string_view>

/// What the process tells the window. Each function writes one record and does nothing where nobody takes it.
/// Texts are cut to what a record holds.
namespace layer::records {

void information(std::string_view text);
void warning(std::string_view text);
void error(std::string_view text);
void glError(GLenum code, std::string_view function, std::string_view description);
void debugMessage(GLenum source, GLenum type, GLuint id, GLenum severity, std::string_view text);
/// Opens a frame in the console with a heading; lineBreak() closes it.
void identified(GLenum source, GLuint id, std::string_view text);
void lineBreak();
/// The payload of a context record, 8216 bytes.
void context(std::string_view payload);

// The system report.
void reportNumber(std::uint32_t number);
void reportFlag(std::uint32_t key, bool value);
void reportText(std::string_view text, bool value);
void reportDetail(std::string_view text, std::uint32_t value);
void reportKeyedText(std::uint32_t key, std::string_view text);
void reportOtherKeyedText(std::uint32_t key, std::string_view text);
void reportComplete();

} // namespace layer::records
