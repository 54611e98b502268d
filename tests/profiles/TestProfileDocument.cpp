#include "Limits.h"
#include "ProfileChanges.h"
#include "ProfileData.h"
#include "ProfileFile.h"
#include "ProfileReader.h"
#include "ProfileWriter.h"

#include <gtest/gtest.h>

namespace {

std::string failureOf(std::string_view xml)
{
    try {
        readProfile(xml);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "loaded";
}

/// The document behind a `profile` start tag, as a save writes it after a load.
std::string saved(const std::string& content)
{
    return writeProfile(readProfile("<profile>" + content + "</profile>"));
}

std::string nested(int depth)
{
    std::string text;
    for (int i = 0; i < depth; ++i)
        text += "<a>";
    for (int i = 0; i < depth; ++i)
        text += "</a>";
    return text;
}

struct Broken {
    const char* name;
    std::string document;
    std::string reason;
};

class BrokenDocuments : public testing::TestWithParam<Broken> { };

TEST_P(BrokenDocuments, haveAReason)
{
    const std::string failure = failureOf(GetParam().document);
    EXPECT_TRUE(failure.starts_with("Failed to load profile data (" + GetParam().reason)) << failure;
    EXPECT_TRUE(failure.ends_with(")"));
}

INSTANTIATE_TEST_SUITE_P(Documents, BrokenDocuments,
    testing::Values(Broken{"empty", "", "Error=XML_ERROR_EMPTY_DOCUMENT"},
        Broken{"blank", " \n ", "Error=XML_ERROR_EMPTY_DOCUMENT"},
        Broken{"otherRoot", "<profiles><profile/></profiles>", "No <profile> element was found"},
        Broken{"commentAlone", "<!-- profile -->", "No <profile> element was found"},
        Broken{"openEnd", "<profile>", "Error=XML_ERROR_MISMATCHED_ELEMENT"},
        Broken{"crossed", "<profile><es></profile></es>", "Error=XML_ERROR_MISMATCHED_ELEMENT"},
        Broken{
            "openCdata", "<profile><device><![CDATA[x</device></profile>", "Error=XML_ERROR_PARSING_CDATA"},
        Broken{"deep", "<profile>" + nested(200) + "</profile>", "Error=XML_ELEMENT_DEPTH_EXCEEDED"},
        Broken{"deepest", nested(500000), "Error=XML_ELEMENT_DEPTH_EXCEEDED"},
        Broken{"nul", std::string("<profile/>\0<x/>", 15), "it holds a NUL character"},
        Broken{"latin1", "<profile><device>caf\xE9</device></profile>", "it is not UTF-8 text"},
        Broken{"overlong", "<profile><device>\xC0\xAF</device></profile>", "it is not UTF-8 text"},
        Broken{"utf16", std::string("\xFF\xFE<\0p\0>\0", 8), "it is not UTF-8 text"},
        Broken{"halfSurrogate", "<profile><x a='&#xDC00;'/></profile>", "it refers to a character"},
        Broken{
            "encodedSurrogate", "<profile><device>\xED\xA0\x80</device></profile>", "it is not UTF-8 text"},
        Broken{"nulReference", "<profile><device>&#0;</device></profile>", "it refers to a character"}),
    [](const auto& row) { return std::string(row.param.name); });

struct Texts {
    const char* name;
    const char* device;
    const char* value;
};

class DeviceTexts : public testing::TestWithParam<Texts> { };

TEST_P(DeviceTexts, areReadAndSurviveSaves)
{
    const std::string document = std::string("<profile><device>") + GetParam().device + "</device></profile>";
    const ProfileData profile = readProfile(document);
    EXPECT_EQ(profile.device(), GetParam().value);
    const ProfileData again = readProfile(writeProfile(profile));
    EXPECT_EQ(again, profile);
    EXPECT_EQ(writeProfile(again), writeProfile(profile));
}

INSTANTIATE_TEST_SUITE_P(Texts, DeviceTexts,
    testing::Values(Texts{"blanksStay", " Foo\t", " Foo\t"}, Texts{"blanksAlone", " \n", ""},
        Texts{"blankByReference", "&#32;&#10;", " \n"}, Texts{"lineEnds", "a\r\nb\rc", "a\nb\nc"},
        Texts{"returnByReference", "a&#13;&#xA;b", "a\r\nb"},
        Texts{"entities", "&lt;&amp;&gt;&quot;&apos;", "<&>\"'"}, Texts{"unknownEntity", "&boo;&", "&boo;&"},
        Texts{"cdata", "a<![CDATA[<b>&amp;]]>c", "a<b>&amp;c"}, Texts{"comment", "a<!-- x -->b", "ab"},
        Texts{"unicode", "\xC3\xA9&#x1F600;", "\xC3\xA9\xF0\x9F\x98\x80"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(ProfileDocument, sectionsAreReadIntoMaps)
{
    const ProfileData profile = readProfile("\xEF\xBB\xBF<?xml version='1.0'?><!-- mine -->\r\n"
                                            "<profile>\r\n<vendor>V</vendor><device>D</device>"
                                            "<device>second</device>"
                                            "<es version=' 2\n'><max_texture_size> 0x1 </max_texture_size>"
                                            "<extension>GL_b</extension>"
                                            "<range>lost<min>1</min><max/></range></es>"
                                            "<es version='1'/><es version='2'><extension>GL_a</extension>"
                                            "<extension>GL_b</extension><extension/></es>"
                                            "<egl><config id='7'><level>EGL_NONE</level></config>"
                                            "<config id='-2'><level>12344</level></config>"
                                            "<config id='7'><x/></config><config id='9'/></egl>"
                                            "<egl><config id='8'><level/></config></egl>"
                                            "</profile><profile><device>other</device></profile>");
    EXPECT_EQ(profile.device(), "D");
    EXPECT_EQ(profile.renderer(), "");
    EXPECT_EQ(profile.vendor(), "V");
    const ProfileNode range{"range", "", {{"min", "1", {}}, {"max", "", {}}}};
    EXPECT_EQ(
        profile.capabilities(), (ProfileData::Capabilities{{2, {{"max_texture_size", " 0x1 ", {}}, range}}}));
    EXPECT_EQ(profile.extensions(), (ProfileData::Extensions{{1, {}}, {2, {"", "GL_a", "GL_b", "GL_b"}}}));
    EXPECT_EQ(profile.configs(),
        (ProfileData::Configs{
            {-2, {{"level", "12344", {}}}}, {7, {{"level", "EGL_NONE", {}}, {"x", "", {}}}}}));
}

TEST(ProfileDocument, numbersAreWholeOrNone)
{
    for (const char* number : {"2", "+2", "\t2 ", "002", "-2147483648", "2147483647"}) {
        const auto profile = readProfile(std::string("<profile><es version='") + number + "'/></profile>");
        EXPECT_EQ(profile.extensions().size(), 1U) << number;
    }
    for (const char* number : {"", " ", "two", "2x", "2.0", "2 0", "0x2", "2147483648", "- 2"}) {
        const std::string content = std::string("='") + number + "'><a/>";
        std::string document = "<profile><es version";
        document.append(content).append("</es><egl><config id").append(content);
        const auto profile = readProfile(document.append("</config></egl></profile>"));
        EXPECT_TRUE(profile.extensions().empty() && profile.capabilities().empty()) << number;
        EXPECT_TRUE(profile.configs().empty()) << number;
    }
    EXPECT_TRUE(readProfile("<profile><es><a/></es></profile>").extensions().empty());
}

TEST(ProfileDocument, isWrittenInFixedOrder)
{
    EXPECT_EQ(saved(""), "<profile>\n    <egl/>\n</profile>\n");
    EXPECT_EQ(saved("<egl><config id='3'><a>1</a><m><w>2</w>\n<h>3</h></m></config>"
                    "<config id='-1'><b/></config></egl>"
                    "<es version='31'><c>4</c><extension>GL_b</extension><extension>GL_a</extension></es>"
                    "<es version='2'/><vendor>&lt;V&gt;</vendor><renderer/><device>D</device>"),
        "<profile>\n"
        "    <device>D</device>\n"
        "    <vendor>&lt;V&gt;</vendor>\n"
        "    <es version=\"2\"/>\n"
        "    <es version=\"31\">\n"
        "        <extension>GL_a</extension>\n"
        "        <extension>GL_b</extension>\n"
        "        <c>4</c>\n"
        "    </es>\n"
        "    <egl>\n"
        "        <config id=\"-1\">\n"
        "            <b></b>\n"
        "        </config>\n"
        "        <config id=\"3\">\n"
        "            <a>1</a>\n"
        "            <m><w>2</w><h>3</h></m>\n"
        "        </config>\n"
        "    </egl>\n"
        "</profile>\n");

    ProfileData edited = readProfile("<profile><es version='2'/></profile>");
    edited.capabilities()[1].push_back({"late", "1", {}});
    edited.capabilities()[2].push_back({"early", "1", {}});
    EXPECT_LT(writeProfile(edited).find("early"), writeProfile(edited).find("late"));
}

TEST(ProfileDocument, whatCannotBeReadSurvives)
{
    const std::string text = saved("<new a='1' b='&#13;'>x<!-- c --><y>&#32;</y><![CDATA[<z>]]></new>"
                                   "<es version='three'><a>1</a></es><later><one/><two/></later>"
                                   "<egl><config id='x'><a>1</a></config><stereo/></egl>");
    EXPECT_EQ(text,
        "<profile>\n"
        "    <egl>\n"
        "        <config id=\"x\">\n"
        "            <a>1</a>\n"
        "        </config>\n"
        "        <stereo/>\n"
        "    </egl>\n"
        "    <new a=\"1\" b=\"&#13;\">x<!-- c --><y>&#32;</y><![CDATA[<z>]]></new>\n"
        "    <es version=\"three\">\n"
        "        <a>1</a>\n"
        "    </es>\n"
        "    <later>\n"
        "        <one/>\n"
        "        <two/>\n"
        "    </later>\n"
        "</profile>\n");
    EXPECT_EQ(writeProfile(readProfile(text)), text);
    // What stands around a kept element does not make it another one.
    EXPECT_EQ(readProfile("<profile>stray<new><a/></new></profile>"),
        readProfile("<profile>\n<new>\n<a/>\n</new>\n</profile>"));
    EXPECT_NE(readProfile("<profile><new/></profile>"), readProfile("<profile/>"));
}

/// A profile as people write them by hand, in the order of a save.
constexpr char byHand[] = R"(<?xml-stylesheet href="x.css"?>
<!-- Mine. -->
<profile xmlns:m="urn:mine" m:owner="me">
    <!-- the board -->
    <device m:since="3">Board<!-- v2 --></device>
    <es version="2" tested="yes">
        <extension rank="1">GL_a</extension>
        <extension>GL_b</extension>
        <!-- halved -->
        <max_texture_size unit="px">4096</max_texture_size> <!-- same line -->
        <format of="1">1</format>
        <format of="2">2</format>
        <format of="3">3</format>
        <!-- the end -->
    </es>
    <egl vendor="x">
        <config id="4" name="small"><red_size>8</red_size><swap_interval><min m:x="1">0</min><!-- c --><max>1</max></swap_interval></config>
        <config id="5" name="without"/>
    </egl>
    <m:notes>kept</m:notes>
</profile>
<!-- after -->
)";

TEST(ProfileDocument, aSaveChangesWhatWasChangedAlone)
{
    const ProfileData read = readProfile(byHand);
    const std::string normal = writeProfile(read);
    for (const char* kept : {"<?xml-stylesheet href", "<!-- Mine. -->", "xmlns:m=\"urn:mine\"", "m:owner",
             "<!-- the board -->", "m:since=\"3\">Board<!-- v2 --><", "tested=", "rank=", "unit=\"px\"",
             "<!-- same line -->", "<!-- the end -->", "vendor=\"x\"", "name=\"small\"", "m:x=\"1\"",
             "<!-- c -->", "name=\"without\"", "<m:notes>", "<!-- after -->"})
        EXPECT_NE(normal.find(kept), std::string::npos) << kept;
    EXPECT_EQ(writeProfile(readProfile(normal)), normal);
    const auto expect = [&normal](const ProfileData& edited, std::string_view old, std::string_view changed) {
        std::string expected = normal;
        ASSERT_NE(expected.find(old), std::string::npos);
        EXPECT_EQ(writeProfile(edited), expected.replace(expected.find(old), old.size(), changed));
    };
    ProfileData edited = read;
    edited.setDevice("Other");
    expect(edited, "Board<", "Other<");
    edited = read;
    edited.extensions()[2][0] = "GL_ab";
    expect(edited, "GL_a<", "GL_ab<");
    edited = read;
    edited.capabilities()[2][0].value = "8192";
    expect(edited, "4096", "8192");
    edited = read;
    edited.capabilities()[2].erase(edited.capabilities()[2].begin() + 2);
    expect(edited, "        <format of=\"2\">2</format>\n", "");
    edited = read;
    edited.configs()[4][1].children[0].value = "7";
    expect(edited, ">0<", ">7<");
    edited = read;
    edited.configs().erase(4);
    EXPECT_EQ(writeProfile(edited).find("small"), std::string::npos);
}

TEST(ProfileDocument, changesOfPartsCountEach)
{
    const ProfileData before = readProfile(
        "<profile><es version='2'><range><min>1</min><max>2</max></range><x>1</x><x>2</x></es></profile>");
    ProfileData after = before;
    std::vector<ProfileNode>& nodes = after.capabilities()[2];
    nodes[0].children[0].value = "3";
    nodes[0].children[1].value = "4";
    EXPECT_EQ(countChanges(before, after), 2U);
    nodes[1].value = "5";
    nodes.push_back({"size", "", {{"width", "1", {}}, {"height", "1", {}}}});
    EXPECT_EQ(countChanges(before, after), 4U);
    nodes.clear();
    EXPECT_EQ(countChanges(before, after), 3U);
}

TEST(ProfileDocument, otherMarkupIsAnotherDocument)
{
    const ProfileData plain = readProfile("<profile><egl><x/></egl></profile>");
    for (const char* other : {"<profile><egl><x/><!-- c --></egl></profile>",
             "<profile><egl><x a='1'/></egl></profile>", "<profile a='1'><egl><x/></egl></profile>"})
        EXPECT_NE(readProfile(other), plain) << other;
    EXPECT_EQ(readProfile("<?xml version='1.0'?>\n<profile>\n<egl><x/>\n</egl></profile>"), plain);
    // Sections of one version become one, and keep what both have.
    const std::string united = saved("<es version='2' a='1'><x>1</x></es><!-- c -->"
                                     "<es version='02' b='2'><!-- d --><y>2</y></es>"
                                     "<device a='1'/><device>second</device>");
    EXPECT_EQ(united,
        "<profile>\n    <!-- c -->\n    <device a=\"1\"></device>\n    <es version=\"2\" a=\"1\" b=\"2\">\n"
        "        <x>1</x>\n        <!-- d -->\n        <y>2</y>\n    </es>\n    <egl/>\n"
        "    <device>second</device>\n</profile>\n");
}

TEST(ProfileDocument, namesComeFromWhatThereIs)
{
    ProfileData profile = readProfile("<profile/>");
    EXPECT_THROW(profile.displayName(), std::runtime_error);
    EXPECT_THROW(profile_file::nameForSaving(profile), std::runtime_error);
    profile.setRenderer("X");
    EXPECT_EQ(profile.displayName(), "Generic X");
    EXPECT_EQ(profile_file::nameForSaving(profile), "Generic X.xml");
    const std::pair<const char*, const char*> fileNames[] = {{"Foo", "Foo.xml"}, {"board.xml", "board.xml"},
        {"board.XML", "board.XML.xml"}, {"xml", "xml.xml"}, {"a.xml.b", "a.xml.b.xml"}};
    for (const auto& [device, fileName] : fileNames) {
        profile.setDevice(device);
        EXPECT_EQ(profile.displayName(), device);
        EXPECT_EQ(profile_file::nameForSaving(profile), fileName);
    }
    profile.setFileName("kept");
    EXPECT_EQ(profile_file::nameForSaving(profile), "kept");
    profile.setDevice("");
    profile.setRenderer("");
    EXPECT_EQ(profile.displayName(), "kept");
}

TEST(ProfileDocument, editsThatCouldNotBeReadAgainAreNamed)
{
    const ProfileData sound = readProfile("<profile><es version='2'/></profile>");
    EXPECT_EQ(profile_file::whyNotSavable(sound), "");
    const auto reasonFor = [&](const ProfileNode& node) {
        ProfileData capability = sound;
        capability.capabilities()[2].push_back(node);
        return profile_file::whyNotSavable(capability);
    };
    EXPECT_EQ(reasonFor({"a-1.b:_\xC3\xA9", "\r <", {}}), "");
    EXPECT_EQ(reasonFor({"", "1", {}}), "'' is no name of an XML element");
    for (const char* name : {"1a", "a b", "a>", "a/", "-a", "a\n"})
        EXPECT_NE(reasonFor({name, "", {}}), "") << name;
    EXPECT_NE(reasonFor({"range", "", {{"mi n", "1", {}}}}), "");
    EXPECT_NE(reasonFor({"extension", "1", {}}), "");
    EXPECT_NE(reasonFor({"a", std::string("1\0", 2), {}}), "");
    EXPECT_NE(reasonFor({"a", "\xFF", {}}), "");
    EXPECT_NE(reasonFor({"a", std::string(platform::limits::fileSize, 'x'), {}}), "");
    ProfileNode deep{"a", "", {}};
    for (int i = 0; i < 200; ++i)
        deep = {"a", "", {deep}};
    EXPECT_NE(reasonFor(deep), "");
}

TEST(ProfileDocument, whatGrowsWithItsIndentationIsCutOff)
{
    std::string content;
    for (int depth = 0; depth < 90; ++depth)
        content.insert(0, "<a>").append("</a>");
    std::string leaves;
    for (int leaf = 0; leaf < 50000; ++leaf)
        leaves += "<b/>";
    const ProfileData profile =
        readProfile("<profile>" + content.insert(content.find("</a>"), leaves) + "</profile>");
    EXPECT_EQ(profile_file::whyNotSavable(profile), "it is larger than 8388608 bytes");
    EXPECT_LT(writeProfile(profile).size(), platform::limits::fileSize + 1000);
}

} // namespace
