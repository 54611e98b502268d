#pragma once

#include <streambuf>
#include <string_view>
#include <vector>

/// Lets a stream write into a byte vector that grows as needed: the text of an element, the output of base64.
class CVectorByteWrapper : public std::streambuf {
public:
    /// The vector is appended to and must outlive the wrapper.
    explicit CVectorByteWrapper(std::vector<char>& bytes)
        : m_bytes(bytes)
    {
    }

protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* characters, std::streamsize count) override;

private:
    std::vector<char>& m_bytes;
};

/// The vector's content as text.
inline std::string_view asText(const std::vector<char>& bytes)
{
    return {bytes.data(), bytes.size()};
}
