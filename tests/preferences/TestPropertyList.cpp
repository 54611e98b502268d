#include "Base64.h"
#include "CImmutableByteWrapper.h"
#include "CVectorByteWrapper.h"
#include "PropertyList.h"
#include "XmlText.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <tinyxml2.h>

namespace {

struct DocumentCase {
    const char* name;
    const char* document;
    bool parsed;
    bool sound;
    const char* error;
    /// How the document is printed afterwards, with all indentation removed; null when it does not matter.
    const char* result;
};

std::string withoutIndentation(const std::string& text)
{
    std::string result;
    for (const char character : text) {
        if (character != '\n' && character != ' ')
            result += character;
    }
    return result;
}

class Documents : public testing::TestWithParam<DocumentCase> { };

constexpr const char* missingKey = "ERROR: Missing <key> tag\n";
constexpr const char* noValue = "ERROR: Key missing value!";
constexpr const char* keyForValue = "ERROR: Key missing value\n";
constexpr const char* keyInArray = "ERROR: Array elements cannot contain a <key> tag!\n";
constexpr const char* emptyRoot = "<plistversion=\"1.0\"><dict/></plist>";

const DocumentCase documentCases[] = {
    {"template", property_list::emptyFile.data(), true, true, "", nullptr},
    {"empty", "", false, true, "", emptyRoot},
    {"noXml", "no xml", false, true, "", emptyRoot},
    {"cutShort", "<plist><dict><key>a</key>", false, true, "", emptyRoot},
    {"commentAlone", "<!--c-->", true, true, "", "<!--c--><plistversion=\"1.0\"><dict/></plist>"},
    {"bareRoot", "<plist/>", true, true, "", "<plist><dict/></plist>"},
    {"textRoot", "<plist>t</plist>", true, true, "", "<plist>t<dict/></plist>"},
    {"anyRoot", "<other><dict/></other>", true, true, "", "<other><dict/></other>"},
    {"staleFirstChild", "<plist><true/><dict><true/></dict></plist>", true, true, "",
        "<plist><true/><dict><true/></dict><dict/></plist>"},
    {"missingKey", "<plist><dict><string/></dict></plist>", true, false, missingKey, nullptr},
    {"upperCaseKey", "<plist><dict><Key>a</Key><true/></dict></plist>", true, false, missingKey, nullptr},
    {"noValue", "<plist><dict><key>a</key></dict></plist>", true, false, noValue, nullptr},
    {"laterNoValue", "<plist><dict><key>a</key><true/><key>b</key></dict></plist>", true, false, noValue,
        nullptr},
    {"keyForValue", "<plist><dict><key>a</key><key>b</key></dict></plist>", true, false, keyForValue,
        nullptr},
    {"nestedDict", "<plist><dict><key>a</key><dict><true/></dict></dict></plist>", true, false, missingKey,
        nullptr},
    {"keyInArray", "<plist><dict><key>a</key><array><true/><key>b</key></array></dict></plist>", true, false,
        keyInArray, nullptr},
    {"dictInArray", "<plist><dict><key>a</key><array><dict><true/></dict></array></dict></plist>", true, true,
        "", nullptr},
    {"arrayInArray", "<plist><dict><key>a</key><array><array><key>b</key></array></array></dict></plist>",
        true, true, "", nullptr},
    {"unknownValue", "<plist><dict><key>a</key><date>x</date></dict></plist>", true, true, "", nullptr},
};

} // namespace

TEST_P(Documents, areRepairedOrRefused)
{
    const DocumentCase& given = GetParam();
    tinyxml2::XMLDocument document;
    std::string parserError;
    std::string error = "before ";
    EXPECT_EQ(property_list::parse(document, given.document, parserError), given.parsed);
    EXPECT_EQ(parserError.empty(), given.parsed);
    EXPECT_EQ(property_list::repair(document, error), given.sound);
    EXPECT_EQ(error, std::string("before ") + given.error);
    if (given.result) {
        EXPECT_EQ(withoutIndentation(property_list::print(document)), given.result);
    }
}

INSTANTIATE_TEST_SUITE_P(PropertyList, Documents, testing::ValuesIn(documentCases),
    [](const testing::TestParamInfo<DocumentCase>& row) { return row.param.name; });

TEST(PropertyList, templateIsFixed)
{
    EXPECT_EQ(property_list::emptyFile,
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple Computer//DTD PLIST "
        "1.0//EN\" "
        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist "
        "version=\"1.0\">\n<dict>\n</dict>\n</plist>\n");
}

TEST(PropertyList, keyPathsAreCutAtSlashes)
{
    using property_list::KeyPath;
    for (const char* text : {"a/b", "/a/b", "a/b/", "/a//b/", "///a///b///"})
        EXPECT_EQ(property_list::splitKeyPath(text), (KeyPath{"a", "b"})) << text;
    for (const char* text : {"", "/", "//"})
        EXPECT_TRUE(property_list::splitKeyPath(text).empty()) << text;
    EXPECT_EQ(property_list::splitKeyPath("/ /.."), (KeyPath{" ", ".."}));
}

TEST(PropertyList, findTakesTheFirstMatchAndDoesNotAskForADict)
{
    tinyxml2::XMLDocument document;
    std::string error;
    const auto found = [&document](const char* path) -> std::string {
        const property_list::Found result = property_list::find(document, property_list::splitKeyPath(path));
        return result.code == ResultCode::Success ? platform::textOf(*result.value) : "none";
    };
    ASSERT_TRUE(property_list::parse(document,
        "<plist><dict><key/><string>0</string><key>a</key><string>1</string><key>a</key><string>2</string>"
        "<key>l</key><array><string>x</string><string>3</string></array>"
        "<key>d<!--c-->e&amp;<![CDATA[<]]></key><string>4<!--c-->5</string></dict></plist>",
        error));
    EXPECT_EQ(found("a"), "1");
    EXPECT_EQ(found("l/x"), "3");
    EXPECT_EQ(found("de&<"), "45");
    for (const char* absent : {"", "A", "a/b", "l/y", "0"})
        EXPECT_EQ(found(absent), "none") << absent;
}

TEST(PropertyList, printingKeepsEveryText)
{
    for (const std::string text :
        {" ", "\r", "\n\r\n", " \t\v ", "a\rb", "  a  ", "<&>\"']]>", "\xff\xfe", "&#13;"}) {
        tinyxml2::XMLDocument document;
        std::string error;
        ASSERT_TRUE(property_list::repair(document, error));
        property_list::setText(
            *property_list::place(document, {text}, property_list::ElementName::String), text);
        tinyxml2::XMLDocument again;
        ASSERT_TRUE(property_list::parse(again, property_list::print(document), error)) << error;
        const property_list::Found found = property_list::find(again, {text});
        ASSERT_EQ(found.code, ResultCode::Success) << property_list::print(document);
        EXPECT_EQ(platform::textOf(*found.value), text);
    }
}

TEST(PropertyList, namesOfCodes)
{
    EXPECT_STREQ(printableName(ResultCode::Success), "SUCCESS");
    EXPECT_STREQ(printableName(ResultCode::WrongType), "CRITICAL_ERROR");
    EXPECT_EQ(printableName(ResultCode::NoDocument), nullptr);
}

TEST(Base64, encodesAndDecodes)
{
    const auto encoded = [](const std::string& bytes) {
        std::vector<char> text;
        CImmutableByteWrapper source(bytes);
        CVectorByteWrapper target(text);
        base64::encode(source, target);
        return std::string(asText(text));
    };
    const auto decoded = [](const std::string& text) -> std::string {
        std::vector<char> bytes;
        CImmutableByteWrapper source(text);
        CVectorByteWrapper target(bytes);
        return base64::decode(source, target) ? std::string(asText(bytes)) : "malformed";
    };
    EXPECT_EQ(encoded("f"), "Zg==");
    EXPECT_EQ(encoded("fo"), "Zm8=");
    EXPECT_EQ(encoded("\xfb\xff\xbf"), "+/+/");
    for (const std::string& bytes :
        {std::string(), std::string("\0\xff", 2), std::string("any carnal pleas")})
        EXPECT_EQ(decoded(encoded(bytes)), bytes);
    EXPECT_EQ(decoded(" Z m\n8\t=\r\n"), "fo");
    for (const char* text :
        {"Z", "Zg", "Zg=", "Zg===", "Z===", "====", "Zh==", "Zm9=", "Zg==Zg==", "Zm-v", "Zm8=A"})
        EXPECT_EQ(decoded(text), "malformed") << text;
}
