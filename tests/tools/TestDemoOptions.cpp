#include "Connection.h"
#include "Options.h"

#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using demo::Options;
using demo::Scenario;

namespace {

struct BadLine {
    std::vector<std::string> arguments;
    std::string complaint; ///< Part of the message.
};

} // namespace

TEST(DemoOptions, bothWaysToGiveAValue)
{
    const Options options = demo::parseOptions({"flood", "--rate=500", "--count", "20", "--stay"});
    EXPECT_EQ(options.scenario, Scenario::Flood);
    EXPECT_EQ(options.rate, 500U);
    EXPECT_EQ(options.count, 20U);
    EXPECT_TRUE(options.stay);
    EXPECT_EQ(demo::parseOptions({"--socket", "a=b"}).socket, "a=b");
    EXPECT_EQ(demo::parseOptions({}).scenario, Scenario::Tour);
}

TEST(DemoOptions, mistakesAreNamed)
{
    const std::vector<BadLine> lines{
        {{"dance"}, "\"dance\""},
        {{""}, "Unknown scenario"},
        {{"tour", "crash"}, "\"crash\""},
        {{"--fast"}, "\"--fast\""},
        {{"--stay=yes"}, "\"--stay=yes\""},
        {{"--pace"}, "--pace needs a value"},
        {{"--pace", "12ms"}, "\"12ms\""},
        {{"--pace", "-1"}, "\"-1\""},
        {{"--pace", "4294967297"}, "\"4294967297\""},
        {{"--clients=0"}, "from 1"},
        {{"--socket="}, "--socket"},
        {{"--count", "5"}, "flood only"},
        {{"flood", "--pace", "5"}, "--rate"},
        {{"--stay", "crash"}, "--stay"},
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

TEST(DemoSocketPath, namesLiveInTheTemporaryFolder)
{
    const char* folder = std::getenv("TMPDIR");
    const std::string kept = folder != nullptr ? folder : "";
    setenv("TMPDIR", "/somewhere/", 1);
    EXPECT_EQ(demo::socketPath("Corvale"), "/somewhere/Corvale");
    EXPECT_EQ(demo::socketPath("./Corvale"), "./Corvale");
    setenv("TMPDIR", "", 1);
    EXPECT_EQ(demo::socketPath("Corvale"), "/tmp/Corvale");
    setenv("TMPDIR", kept.c_str(), 1);
}

TEST(DemoSocketPath, whatCannotBeConnectedToIsExplained)
{
    EXPECT_THROW(demo::connectTo(std::string(108, 'x')), demo::ConnectError);
    try {
        demo::connectTo(demo::socketPath("NobodyHere"));
        ADD_FAILURE() << "connected to nobody";
    } catch (const demo::ConnectError& error) {
        EXPECT_NE(std::string(error.what()).find("Start corvale-gui first"), std::string::npos);
    }
}
