#include "Checks.h"
#include "Comparer.h"
#include "Launcher.h"
#include "MadeProfile.h"
#include "ProfileChoice.h"

#include <cstdio>

int main(int argc, char** argv)
{
    launcher::Options options = launcher::readOptions(argc, argv);
    if (options.request == launcher::Options::Request::ListProfiles) {
        std::fputs(launcher::profileList().c_str(), stdout);
        return 0;
    }
    if (options.request == launcher::Options::Request::MakeProfile)
        return launcher::makeProfile(options.made);
    if (options.request == launcher::Options::Request::Check)
        return checks::runCheck(options);
    if (options.request == launcher::Options::Request::Compare)
        return checks::compareFiles(options.program[0], options.program[1]);
    if (options.request != launcher::Options::Request::Run) {
        const bool isAnswer = options.request == launcher::Options::Request::Answer;
        std::fputs(options.text.c_str(), isAnswer ? stdout : stderr);
        return isAnswer ? 0 : launcher::exit_code::wrongArguments;
    }
    return launcher::Launcher(std::move(options)).run();
}
