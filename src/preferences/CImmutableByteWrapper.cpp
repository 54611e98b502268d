#include "CImmutableByteWrapper.h"

CImmutableByteWrapper::CImmutableByteWrapper(std::string_view bytes)
{
    // A get area wants pointers to non-const; without an overridden pbackfail nothing is ever stored through
    // them.
    char* first = const_cast<char*>(bytes.data());
    setg(first, first, first + bytes.size());
}
