#include "CVectorByteWrapper.h"

CVectorByteWrapper::int_type CVectorByteWrapper::overflow(int_type character)
{
    if (!traits_type::eq_int_type(character, traits_type::eof()))
        m_bytes.push_back(traits_type::to_char_type(character));
    return traits_type::not_eof(character);
}

std::streamsize CVectorByteWrapper::xsputn(const char* characters, std::streamsize count)
{
    m_bytes.insert(m_bytes.end(), characters, characters + count);
    return count;
}
