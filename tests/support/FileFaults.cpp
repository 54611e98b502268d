#include "FileFaults.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

namespace {

int callsLeft = 0;
int armedError = 0;
bool fired = false;
std::size_t largestWrite = 0;
std::string callNames;

void arm(int number, int errorNumber)
{
    callsLeft = number;
    armedError = errorNumber;
    fired = false;
}

/// True when this call is the one that has to fail; does not return when it is the one to die at.
bool isFaulty(const char* name)
{
    callNames += std::string(name) + ' ';
    if (callsLeft == 0 || --callsLeft > 0)
        return false;
    fired = true;
    if (armedError == 0)
        raise(SIGKILL);
    errno = armedError;
    return true;
}

} // namespace

void file_faults::failCall(int number, int errorNumber)
{
    arm(number, errorNumber);
}

void file_faults::killAtCall(int number)
{
    arm(number, 0);
}

void file_faults::shortWrites(unsigned int bytes)
{
    largestWrite = bytes;
}

const std::string& file_faults::trace()
{
    return callNames;
}

bool file_faults::clear()
{
    callsLeft = 0;
    largestWrite = 0;
    callNames.clear();
    return fired;
}

// The linker leads the calls here and keeps the originals under the other name.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
int __real_open(const char* path, int flags, ...);
ssize_t __real_write(int descriptor, const void* bytes, std::size_t count);
int __real_ftruncate(int descriptor, off_t size);
int __real_fchmod(int descriptor, mode_t mode);
int __real_fsync(int descriptor);
int __real_rename(const char* from, const char* to);

int __wrap_open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): va_start did it
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return isFaulty("open") ? -1 : __real_open(path, flags, mode);
}
ssize_t __wrap_write(int descriptor, const void* bytes, std::size_t count)
{
    return isFaulty("write")
        ? -1
        : __real_write(descriptor, bytes, largestWrite ? std::min(count, largestWrite) : count);
}
int __wrap_ftruncate(int descriptor, off_t size)
{
    return isFaulty("ftruncate") ? -1 : __real_ftruncate(descriptor, size);
}
int __wrap_fchmod(int descriptor, mode_t mode)
{
    return isFaulty("fchmod") ? -1 : __real_fchmod(descriptor, mode);
}
int __wrap_fsync(int descriptor)
{
    return isFaulty("fsync") ? -1 : __real_fsync(descriptor);
}
int __wrap_rename(const char* from, const char* to)
{
    return isFaulty("rename") ? -1 : __real_rename(from, to);
}
}
// NOLINTEND(bugprone-reserved-identifier)
