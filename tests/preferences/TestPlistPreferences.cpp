#include "Limits.h"
#include "MemoryLayer.h"
#include "PlistPreferences.h"

#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

using property_list::Data;
using property_list::List;

namespace {

class Preferences : public testing::Test {
protected:
    void loadDocument(const std::string& members, bool watch = true)
    {
        disk.content = "<plist><dict>" + members + "</dict></plist>";
        ASSERT_TRUE(store.load(error, watch)) << error;
    }

    /// The member texts of what is on disk, read anew.
    std::string onDisk(const char* key)
    {
        PlistPreferences other("Store", 0, std::make_unique<MemoryLayer>(disk));
        std::string value = "absent";
        EXPECT_TRUE(other.load(error, false));
        other.getString(key, &value, nullptr, false);
        return value;
    }

    MemoryDisk disk;
    std::string error;
    PlistPreferences store{"Store", 0, std::make_unique<MemoryLayer>(disk)};
};

} // namespace

TEST_F(Preferences, withoutADocumentNothingWorks)
{
    bool value = false;
    const bool usual = true;
    EXPECT_EQ(store.getBoolean("a", &value, &usual, true), ResultCode::NoDocument);
    EXPECT_TRUE(value);
    EXPECT_EQ(store.setBoolean("", true), ResultCode::NoDocument);
    EXPECT_FALSE(store.save(true));

    disk.readable = false;
    error = "something older";
    EXPECT_FALSE(store.load(error, true));
    EXPECT_EQ(error, "ERROR: no stream");
    EXPECT_FALSE(store.save(true)) << "a failed load gives no document";
}

/// XML has no control characters, not even as references, and other readers refuse a file that has them.
TEST_F(Preferences, controlCharactersAreWrittenAsXmlHasThem)
{
    std::string all = "\xEF\x80\x80 \xEF\x80\x81\xEF\x80\x80\xEF\x80\x9F \xEF\x80\xA0 \xEF\x80";
    for (char c = 1; c <= ' '; ++c)
        all += c;
    ASSERT_TRUE(store.load(error, false));
    EXPECT_EQ(store.setString("text", all), ResultCode::Success);
    EXPECT_EQ(store.setList("list", {"a", all}), ResultCode::Success);
    EXPECT_TRUE(store.save(false));
    for (const char c : disk.content)
        EXPECT_TRUE(static_cast<unsigned char>(c) >= ' ' || c == '\t' || c == '\n') << static_cast<int>(c);
    ASSERT_TRUE(store.load(error, false));
    std::string text;
    property_list::List list;
    store.getString("text", &text, nullptr, false);
    store.getList("list", &list, nullptr, false);
    EXPECT_EQ(text, all);
    EXPECT_EQ(list, (property_list::List{"a", all}));
}

TEST_F(Preferences, gettersAskForTheirType)
{
    loadDocument(
        "<key>s</key><string> two words </string><key>e</key><string/><key>t</key><true/>"
        "<key>i</key><integer> -5 </integer><key>ib</key><integer>5x</integer><key>r</key><real>1e2</real>"
        "<key>d</key><data>AAEC/w==</data><key>db</key><data>A</data>"
        "<key>l</key><array><string>x</string><string/></array><key>lb</key><array><true/></array>"
        "<key>st</key><string>true</string>");
    std::string text;
    bool flag = false;
    std::int64_t number = 0;
    double real = 0;
    Data data;
    List list;
    EXPECT_EQ(store.getString("s", &text, nullptr, false), ResultCode::Success);
    EXPECT_EQ(text, " two words ");
    EXPECT_EQ(store.getString("e", &text, nullptr, false), ResultCode::Success);
    EXPECT_EQ(text, "");
    EXPECT_EQ(store.getBoolean("t", &flag, nullptr, false), ResultCode::Success);
    EXPECT_TRUE(flag);
    EXPECT_EQ(store.getInteger("i", &number, nullptr, false), ResultCode::Success);
    EXPECT_EQ(number, -5);
    EXPECT_EQ(store.getReal("r", &real, nullptr, false), ResultCode::Success);
    EXPECT_EQ(real, 100);
    EXPECT_EQ(store.getData("d", &data, nullptr, false), ResultCode::Success);
    EXPECT_EQ(data, (Data{0, 1, 2, -1}));
    EXPECT_EQ(store.getList("l", &list, nullptr, false), ResultCode::Success);
    EXPECT_EQ(list, (List{"x", ""}));

    EXPECT_EQ(store.getBoolean("st", nullptr, nullptr, true), ResultCode::WrongType) << "text is no boolean";
    EXPECT_EQ(store.getInteger("ib", &number, nullptr, true), ResultCode::WrongType);
    EXPECT_EQ(store.getInteger("r", &number, nullptr, true), ResultCode::WrongType);
    EXPECT_EQ(store.getData("db", &data, nullptr, true), ResultCode::WrongType);
    EXPECT_EQ(store.getList("lb", &list, nullptr, true), ResultCode::WrongType);
    EXPECT_EQ(list, (List{"x", ""})) << "a result stays as it is when there is no default";
}

TEST_F(Preferences, defaultsAreCopiedWhenWanted)
{
    loadDocument("<key>t</key><true/>");
    const std::string usual = "usual";
    std::string text = "before";
    EXPECT_EQ(store.getString("absent", &text, &usual, false), ResultCode::NoValue);
    EXPECT_EQ(text, "before");
    EXPECT_EQ(store.getString("", &text, &usual, true), ResultCode::NoValue);
    EXPECT_EQ(text, "usual");
    text = "before";
    EXPECT_EQ(store.getString("t", &text, &usual, true), ResultCode::WrongType);
    EXPECT_EQ(text, "usual");
    EXPECT_EQ(store.getString("absent", nullptr, &usual, true), ResultCode::NoValue);
}

TEST_F(Preferences, settersMakeThePathAndReplaceWhatIsInTheWay)
{
    loadDocument("<key>s</key><string a='1'>x</string><key>d</key><dict><key>k</key><true/></dict>"
                 "<key>l</key><array><string>k</string><true/></array>");
    EXPECT_EQ(store.setString("/new//deep/", "1"), ResultCode::Success);
    EXPECT_EQ(store.setString("s", "y"), ResultCode::Success);
    EXPECT_EQ(store.setBoolean("d/k", false), ResultCode::Success);
    EXPECT_EQ(store.setInteger("l/k", std::numeric_limits<std::int64_t>::min()), ResultCode::Success);
    EXPECT_EQ(store.setString("", "x"), ResultCode::EmptyKeyPath);
    EXPECT_EQ(store.setString("//", "x"), ResultCode::EmptyKeyPath);
    ASSERT_TRUE(store.save(false));
    EXPECT_EQ(disk.content,
        "<plist>\n    <dict>\n        <key>s</key>\n        <string a=\"1\">y</string>\n        "
        "<key>d</key>\n"
        "        <dict>\n            <key>k</key>\n            <false/>\n        </dict>\n        "
        "<key>l</key>\n"
        "        <dict>\n            <key>k</key>\n            <integer>-9223372036854775808</integer>\n"
        "        </dict>\n        <key>new</key>\n        <dict>\n            <key>deep</key>\n"
        "            <string>1</string>\n        </dict>\n    </dict>\n</plist>\n");
    EXPECT_EQ(store.setReal("d", 0.1), ResultCode::Success);
    EXPECT_EQ(store.setData("s", {0, 1}), ResultCode::Success);
    EXPECT_EQ(store.setList("new/deep/down", {"", " "}), ResultCode::Success);
    ASSERT_TRUE(store.save(false));
    List list;
    ASSERT_TRUE(store.load(error, false));
    EXPECT_EQ(store.getBoolean("d/k", nullptr, nullptr, false), ResultCode::NoValue);
    EXPECT_EQ(store.getReal("d", nullptr, nullptr, false), ResultCode::Success);
    EXPECT_EQ(store.getData("s", nullptr, nullptr, false), ResultCode::Success);
    EXPECT_EQ(store.getList("new/deep/down", &list, nullptr, false), ResultCode::Success);
    EXPECT_EQ(list, (List{"", " "}));
}

TEST_F(Preferences, whatAFileCannotHoldIsRefused)
{
    loadDocument("");
    std::string deepest;
    for (std::size_t depth = 0; depth < platform::limits::keyPathComponents; ++depth)
        deepest += "/k";
    EXPECT_EQ(store.setString("a", std::string("x\0y", 3)), ResultCode::WrongType);
    EXPECT_EQ(store.setString(std::string_view("a\0b", 3), "x"), ResultCode::WrongType);
    EXPECT_EQ(store.setList("a", {std::string(1, '\0')}), ResultCode::WrongType);
    EXPECT_EQ(store.setReal("a", std::numeric_limits<double>::infinity()), ResultCode::WrongType);
    EXPECT_EQ(store.setString(deepest + "/k", "x"), ResultCode::WrongType);
    EXPECT_TRUE(store.save(false));
    EXPECT_EQ(disk.commits, 0) << "nothing was set";
    EXPECT_EQ(store.setList(deepest, {"bottom"}), ResultCode::Success);
    EXPECT_TRUE(store.save(false));
    ASSERT_TRUE(store.load(error, false));
    EXPECT_EQ(store.getList(deepest, nullptr, nullptr, false), ResultCode::Success);

    EXPECT_EQ(store.setString("large", std::string(platform::limits::fileSize, 'x')), ResultCode::Success);
    EXPECT_FALSE(store.save(false)) << "it could not be read again";
    EXPECT_NE(store.saveError(), "");
}

TEST_F(Preferences, saveWritesOnlyChangesUnlessForced)
{
    loadDocument("");
    EXPECT_TRUE(store.save(false));
    EXPECT_EQ(disk.commits, 0);
    store.setBoolean("a", true);
    EXPECT_TRUE(store.save(false));
    EXPECT_TRUE(store.save(false));
    EXPECT_EQ(disk.commits, 1);
    EXPECT_TRUE(store.save(true));
    EXPECT_EQ(disk.commits, 2);
}

TEST_F(Preferences, withoutAStreamASaveCountsAsDone)
{
    loadDocument("");
    disk.writable = false;
    store.setString("a", "1");
    EXPECT_TRUE(store.save(false));
    disk.writable = true;
    EXPECT_TRUE(store.save(false)) << "nothing has changed since";
    EXPECT_EQ(disk.commits, 0);
    disk.content = "<plist><dict><key>theirs</key><string>3</string></dict></plist>";
    store.setString("b", "2");
    EXPECT_TRUE(store.save(false));
    EXPECT_EQ(onDisk("a") + onDisk("b") + onDisk("theirs"), "123");
}

TEST_F(Preferences, settersReloadWhatOthersWrote)
{
    for (const bool stampMoves : {true, false}) {
        for (const bool watch : {true, false}) {
            loadDocument("<key>theirs</key><string>old</string>", watch);
            disk.content.replace(disk.content.find("old"), 3, "new");
            disk.stamp += stampMoves ? 1 : 0;
            std::string value;
            store.getString("theirs", &value, nullptr, false);
            EXPECT_EQ(value, "old") << "getters never reload";
            const int reads = disk.reads;
            store.setString("ours", "1");
            store.getString("theirs", &value, nullptr, false);
            EXPECT_EQ(value, watch && stampMoves ? "new" : "old");
            EXPECT_EQ(disk.reads - reads, watch && stampMoves ? 1 : 0) << "the stamp tells whether to read";
            store.setString("more", "2");
            EXPECT_EQ(disk.reads - reads, watch && stampMoves ? 1 : 0);
            EXPECT_TRUE(store.save(false));
            store.getString("theirs", &value, nullptr, false);
            EXPECT_EQ(value, watch ? "new" : "old") << "a save compares the bytes";
            EXPECT_EQ(onDisk("theirs"), watch ? "new" : "old");
        }
    }
}

TEST_F(Preferences, savesKeepWhatOthersWroteSinceTheSetter)
{
    loadDocument("<key>both</key><string>0</string>");
    store.setString("x", "overtaken");
    store.setString("x/deep", "ours");
    store.setString("both", "ours");
    disk.readable = false;
    EXPECT_FALSE(store.load(error, true)) << "and forgets nothing";
    disk.readable = true;
    disk.content = "<plist><dict><key>both</key><string>theirs</string><key>y</key><string>theirs</string>"
                   "<key>x</key><dict><key>z</key><string>theirs</string></dict></dict></plist>";
    EXPECT_TRUE(store.save(false));
    EXPECT_EQ(onDisk("both"), "ours");
    EXPECT_EQ(onDisk("y"), "theirs");
    EXPECT_EQ(onDisk("x/deep"), "ours");
    EXPECT_EQ(onDisk("x/z"), "theirs");
}

TEST_F(Preferences, aStaleFirstChildIsWhereValuesGo)
{
    for (const char* stale : {"<string>x</string>", "<array><true/></array>", "<true/>"}) {
        disk.content = std::string("<plist>") + stale + "</plist>";
        ASSERT_TRUE(store.load(error, true));
        EXPECT_EQ(store.setString("a", "1"), ResultCode::Success);
        EXPECT_TRUE(store.save(false));
        EXPECT_EQ(onDisk("a"), "1") << disk.content;
        EXPECT_LT(disk.content.find("<key>a"), disk.content.find("<dict")) << disk.content;
    }
}

TEST_F(Preferences, unknownNodesSurvive)
{
    disk.content =
        "\xEF\xBB\xBF<!DOCTYPE x><!-- c --><plist z=\"&#13;\"><dict><key>a</key><date>d</date><!-- e -->"
        "<key>b</key><string><![CDATA[<&]]></string></dict><extra>&#32;</extra></plist>";
    ASSERT_TRUE(store.load(error, true));
    store.setString("b", "<&");
    ASSERT_TRUE(store.save(false));
    EXPECT_EQ(disk.content,
        "\xEF\xBB\xBF<!DOCTYPE x>\n<!-- c -->\n<plist z=\"&#13;\">\n    <dict>\n        <key>a</key>\n"
        "        <date>d</date>\n        <!-- e -->\n        <key>b</key>\n"
        "        <string><![CDATA[<&]]></string>\n    </dict>\n    <extra>&#32;</extra>\n</plist>\n");
}
