#include "MadeProfile.h"

#include "FileReplacement.h"
#include "HostProfile.h"
#include "Options.h"
#include "PrintedText.h"
#include "ProfileWriter.h"

#include <cstdio>

namespace launcher {

int makeProfile(const std::string& path)
{
    const auto tell = [](const std::string& text) {
        std::fprintf(stderr, "corvale-run: %s\n", printed(text).c_str());
    };
    // Where the file cannot be written, nobody needs to wait for the driver.
    std::optional<platform::FileReplacement> file;
    if (path != "-")
        file.emplace(path);
    if (file && !file->ready()) {
        tell(file->reason() + ".");
        return exit_code::notMade;
    }
    const host_query::HostProfile host = host_query::askHost();
    for (const std::string& problem : host.problems)
        tell(problem);
    if (!host.profile) {
        tell("This machine has no OpenGL ES; there is no profile to be made.");
        return exit_code::notMade;
    }
    const std::string xml = writeProfile(*host.profile);
    if (!file) {
        if (std::fwrite(xml.data(), 1, xml.size(), stdout) == xml.size() && std::fflush(stdout) == 0)
            return 0;
        tell("The profile cannot be written to the standard output.");
        return exit_code::notMade;
    }
    if (const platform::FileResult result = file->commit(xml); !result) {
        tell(result.reason + ".");
        return exit_code::notMade;
    }
    return 0;
}

} // namespace launcher
