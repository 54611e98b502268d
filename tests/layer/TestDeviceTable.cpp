#include "DeviceTable.h"

#include <limits>

#include <gtest/gtest.h>

namespace {

using namespace layer::device;

Table fullTable()
{
    Table table;
    table.name = "Two\nlines \\n and\r a backslash";
    table.vendor = "Vendor";
    table.strict = true;
    table.eglTexts = {{0x3053, "Vendor of EGL"}, {0x3054, ""}};
    Api& old = table.apis.emplace_back();
    old.version = 11;
    old.extensions = {"GL_OES_read_format"};
    Api& api = table.apis.emplace_back();
    api.version = 32;
    api.texts = {{0x1F02, "OpenGL ES 3.2 build 5"}};
    api.extensions = {"GL_EXT_a", "GL_KHR_b"};
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    api.capabilities = {{0x0D33, {std::int64_t{4096}}}, {0x9111, {least, most}}, {0x86A3, {}},
        {0x846E, {1.0, 0.1, -1e300, std::int64_t{2}}}};
    api.precisions = {{{0x8B30, 0x8DF1}, {{14, -15, 10}}}};
    api.sampleCounts = {{0x8058, {8, 4}}, {0x8D62, {}}};
    table.configs = {{{0x3028, -1}, {0x3024, 8}}, {{0x3028, 2}}};
    return table;
}

TEST(DeviceTable, ReadsWhatItWrote)
{
    for (const Table& table : {fullTable(), Table{}}) {
        std::string why;
        const std::optional<Table> read = fromText(toText(table), &why);
        ASSERT_TRUE(read) << why;
        EXPECT_TRUE(*read == table) << toText(*read);
    }
}

TEST(DeviceTable, RefusesEveryPartOfAText)
{
    const std::string whole = toText(fullTable());
    for (std::size_t size = 0; size < whole.size(); ++size) {
        std::string why;
        EXPECT_FALSE(fromText(std::string_view(whole).substr(0, size), &why)) << size;
        EXPECT_TRUE(why.starts_with("line ")) << why;
    }
}

TEST(DeviceTable, RefusesWrongLines)
{
    const char* const lines[] = {"", "nonsense 1", "strict", "strict yes", "api 33", "extension GL_a",
        "api 20\napi 11", "api 20\napi 20", "api 20\ncapability 5 x", "api 20\ncapability 5 1 1e999",
        "api 20\ncapability 5 9223372036854775808", "api 20\ncapability -5 1", "api 20\ncapability 5 enan",
        "api 20\ncapability 5 1\ncapability 5 2", "api 20\nprecision 1 2 3 4",
        "api 20\nprecision 1 2 3 4 5 6", "attribute 1 2", "config", "config\nattribute 12328 1 2",
        "config\nattribute 1 2", "config\nattribute 12328 1\nconfig\nattribute 12328 1", "name a\\b",
        "end\nname after"};
    for (const std::string line : lines) {
        std::string why;
        EXPECT_FALSE(fromText("corvale-device 1\n" + line + "\nend\n", &why)) << line;
        EXPECT_FALSE(why.empty()) << line;
    }
    std::string why;
    EXPECT_FALSE(fromText("corvale-device 2\nend\n", &why));
}

} // namespace
