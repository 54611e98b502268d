#include "Hash.h"
#include "Numbers.h"
#include "XmlGuard.h"

#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

namespace {

std::string repeated(int times, const std::string& before, const std::string& piece, const std::string& after)
{
    std::string text = before;
    for (int time = 0; time < times; ++time)
        text += piece;
    return text + after;
}

} // namespace

TEST(Hash, multipliesBeforeItMixes)
{
    EXPECT_EQ(platform::fnv1(""), 0U);
    EXPECT_EQ(platform::fnv1("a"), 0x050c5d7eU);
    EXPECT_EQ(platform::fnv1("foobar"), 0x31f0b262U);
    EXPECT_EQ(platform::fnv1("\xff"), (2166136261U * 16777619U) ^ 0xFFU) << "bytes are not signed";
}

TEST(Numbers, areReadWholeOrRefused)
{
    EXPECT_EQ(platform::parseInteger("\n -9223372036854775808 "), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(platform::parseInteger("+7"), 7);
    EXPECT_EQ(platform::parseReal(" 1e-3\t"), 0.001);
    EXPECT_EQ(platform::parseHexadecimal(" 0xFFFFFFFF "), 0xFFFFFFFFU);
    for (const char* text : {"", "10", "0x", "0x100000000", "-0x1", "0x-1", "0x1g"})
        EXPECT_FALSE(platform::parseHexadecimal(text)) << text;
    for (const char* text : {"", " ", "+", "+-1", "1 2", "1x", "0x10", "9223372036854775808", "1.5"})
        EXPECT_FALSE(platform::parseInteger(text)) << text;
    for (const char* text : {"", "1,5", "1.5.", "inf", "nan", "1e999"})
        EXPECT_FALSE(platform::parseReal(text)) << text;
}

TEST(XmlGuard, refusesWhatTheParserWouldLoseOrHangOn)
{
    const std::string sound[] = {"", "<", " \n<a>a & b</a >\n", "< a><b/>< /a><c/>",
        "<a b='&#65;' c=\"<&#x10FFFF;>\">&#x0041;&lt;</a>", "<a><!-- &#0; --><![CDATA[&#0;]]></a><!X &#0;>",
        "<!DOCTYPE a []><a/>", repeated(2000, "<a>", "<b c='1' d='2'/>", "</a>"),
        repeated(2000, "<a>", "b=\"c\" ", "</a>")};
    for (const std::string& document : sound)
        EXPECT_EQ(platform::xmlHazard(document), "") << document.substr(0, 60);
    const std::string hazardous[] = {std::string("<a/>\0<b/>", 9), "<a>&#0;</a>", "<a>&#x110000;</a>",
        "<a>&#4294967296;</a>", "<a>&#;</a>", "<a>&#x;</a>", "<a>&#12</a>", "<a b='&#0;'/>", "text<a/>",
        "<a/>text", "<a></a><![CDATA[]]>", "<a/></b>", "<a/>< /b><c/>", repeated(2000, "<a ", "b='>' ", "/>"),
        repeated(200, "", "<?x?>", "<a/>")};
    for (const std::string& document : hazardous)
        EXPECT_NE(platform::xmlHazard(document), "") << document.substr(0, 60);
    EXPECT_EQ(platform::xmlHazard("<!DOCTYPE a [<!ENTITY x \"y\">]><a/>"),
        "it has a document type with declarations inside");
}
