#include "Options.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

struct BadLine {
    std::vector<std::string> arguments;
    std::string complaint; ///< Part of the message.
};

} // namespace

TEST(DemoOptions, mistakesAreNamed)
{
    const std::vector<BadLine> lines{
        {{"dance"}, "\"dance\""},
        {{"--fast"}, "\"--fast\""},
        {{"--pace"}, "--pace needs a value"},
        {{"--pace", "4294967297"}, "\"4294967297\""},
        {{"--clients=0"}, "from 1"},
        {{"--count", "5"}, "flood only"},
    };
    for (const BadLine& line : lines) {
        try {
            demo::parseOptions(line.arguments);
            ADD_FAILURE() << "accepted: " << line.complaint;
        } catch (const demo::OptionError& error) {
            EXPECT_NE(std::string(error.what()).find(line.complaint), std::string::npos) << error.what();
        }
    }
}
