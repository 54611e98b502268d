#pragma once

#include <streambuf>
#include <string_view>

/// Lets a stream read bytes that lie somewhere else already: an element's text, the name of an element, the
/// input of the base64 decoder. The bytes must outlive the wrapper and are never written to.
class CImmutableByteWrapper : public std::streambuf {
public:
    explicit CImmutableByteWrapper(std::string_view bytes);
};
