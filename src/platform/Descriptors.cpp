#include "Descriptors.h"

#ifndef _WIN32
#include <algorithm>

#include <sys/resource.h>
#endif

namespace platform {

std::size_t raiseDescriptorLimit()
{
#ifdef _WIN32
    return 0;
#else
    // Enough for thousands of clients; beyond it a closing child process would walk a very long table.
    constexpr rlim_t wanted = 16384;
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return 0;
    const rlim_t target = std::min(limit.rlim_max, wanted);
    if (limit.rlim_cur < target) {
        const rlim_t before = limit.rlim_cur;
        limit.rlim_cur = target;
        if (setrlimit(RLIMIT_NOFILE, &limit) != 0)
            limit.rlim_cur = before;
    }
    return static_cast<std::size_t>(limit.rlim_cur);
#endif
}

} // namespace platform
