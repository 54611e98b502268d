#include "Options.h"
#include "Program.h"

#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace {

constexpr int badOptions = 2;

} // namespace

int main(int argc, char** argv)
{
    try {
        const demo::Options options = demo::parseOptions(std::vector<std::string>(argv + 1, argv + argc));
        if (!options.help)
            return demo::run(options);
        std::cout << demo::helpText();
        return std::cout.flush() ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const demo::OptionError& problem) {
        std::cerr << "demo-client: " << problem.what() << "\nTry \"demo-client --help\".\n";
        return badOptions;
    } catch (const std::exception& problem) {
        std::cerr << "demo-client: " << problem.what() << '\n';
        return EXIT_FAILURE;
    }
}
