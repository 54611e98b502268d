#pragma once

#include <string>
#include <string_view>

namespace platform {

/// Why a document must not be handed to the XML parser, as readable text; empty when there is no such reason.
/// It finds what the parser would take without complaint but drop (everything after a NUL, references to
/// characters that do not exist) and what would keep it busy for minutes (many attributes in one element,
/// many declarations). Whether the document is well-formed is for the parser to say.
std::string xmlHazard(std::string_view document);

} // namespace platform
