#include "CImmutableByteWrapper.h"

#include <ios>

CImmutableByteWrapper::CImmutableByteWrapper(std::string_view bytes)
{
    // A get area wants pointers to non-const; without an overridden pbackfail nothing is ever stored through
    // them.
    char* const first = const_cast<char*>(bytes.data());
    setg(first, first, first + bytes.size());
}

CImmutableByteWrapper::pos_type CImmutableByteWrapper::seekoff(
    off_type offset, std::ios_base::seekdir from, std::ios_base::openmode which)
{
    const off_type size = egptr() - eback();
    off_type origin = 0;
    if (from == std::ios_base::cur)
        origin = gptr() - eback();
    else if (from == std::ios_base::end)
        origin = size;
    // Subtracted rather than added, so that no offset can overflow.
    if ((which & std::ios_base::in) == 0 || offset < -origin || offset > size - origin)
        return pos_type(off_type(-1));
    setg(eback(), eback() + (origin + offset), egptr());
    return pos_type(origin + offset);
}

CImmutableByteWrapper::pos_type CImmutableByteWrapper::seekpos(
    pos_type position, std::ios_base::openmode which)
{
    return seekoff(off_type(position), std::ios_base::beg, which);
}
