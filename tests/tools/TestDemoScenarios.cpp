#include "Scenarios.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

using ui::messages::Message;
using ui::messages::recordSize;
using ui::messages::Type;
namespace offset = ui::messages::offset;

namespace {

/// Keeps what a scenario sends.
class Recorder : public demo::Output {
public:
    void send(std::string_view bytes) override { m_bytes += bytes; }
    void pause(demo::Clock::duration) override { }
    void settle() override { m_settledAt.push_back(m_bytes.size()); }
    void finish(std::string_view lastBytes) override { m_bytes += lastBytes; }

    const std::string& bytes() const { return m_bytes; }
    const std::vector<std::size_t>& settledAt() const { return m_settledAt; }

    /// The whole records.
    std::vector<Message> records() const
    {
        std::vector<Message> records(m_bytes.size() / recordSize);
        for (std::size_t i = 0; i < records.size(); ++i)
            std::copy_n(m_bytes.data() + i * recordSize, recordSize, records[i].data());
        return records;
    }

private:
    std::string m_bytes;
    std::vector<std::size_t> m_settledAt;
};

bool mayComeFromAnApplication(const Message& message)
{
    return message.rawType() <= 20 && (message.rawType() < 11 || message.rawType() > 13);
}

/// True for a context whose four extension lists all lack their final 0.
bool isFullContext(const Message& message)
{
    bool isFull = message.type() == Type::ContextInformation;
    for (const std::size_t list : {offset::contextExtensions, offset::contextExtensionsNotOnHost,
             offset::contextExtensionsNotEmulated, offset::contextHostExtensions}) {
        for (std::size_t i = 0; i < ui::messages::extensionListCapacity; ++i)
            isFull = isFull && message.u32(list + 4 * i) != 0;
    }
    return isFull;
}

class DemoScenario : public testing::Test {
protected:
    Recorder m_recorder;
    demo::Session m_session{m_recorder, demo::Clock::duration::zero()};
};

} // namespace

TEST_F(DemoScenario, tourShowsEverythingThatAnApplicationMaySend)
{
    m_session.introduce("game");
    demo::playTour(m_session);
    m_session.sayGoodbye();
    ASSERT_EQ(m_recorder.bytes().size() % recordSize, 0U);
    std::set<std::uint32_t> types;
    std::set<std::uint32_t> debugTypes;
    std::set<std::uint32_t> severities;
    std::set<std::uint32_t> errors;
    std::uint32_t frame = 0;
    for (const Message& message : m_recorder.records()) {
        EXPECT_TRUE(mayComeFromAnApplication(message)) << message.rawType();
        EXPECT_GE(message.frame(), frame);
        frame = message.frame();
        types.insert(message.rawType());
        if (message.type() == Type::DebugMessage) {
            debugTypes.insert(message.u32(offset::debugType));
            severities.insert(message.u32(offset::debugSeverity));
        } else if (message.type() == Type::GlError) {
            errors.insert(message.u32(offset::glErrorCode));
        }
    }
    EXPECT_EQ(types.size(), 18U);
    EXPECT_EQ(debugTypes,
        (std::set<std::uint32_t>{0x824C, 0x824D, 0x824E, 0x824F, 0x8250, 0x8251, 0x8268, 0x8269, 0x826A}));
    EXPECT_EQ(severities, (std::set<std::uint32_t>{0x826B, 0x9146, 0x9147, 0x9148}));
    EXPECT_EQ(
        errors, (std::set<std::uint32_t>{0, 0x0500, 0x0501, 0x0502, 0x0503, 0x0504, 0x0505, 0x0506, 0x0507}));
    EXPECT_EQ(m_recorder.records().back().type(), Type::CleanDisconnect);
}

TEST_F(DemoScenario, hostileWaitsAfterEachBadTypeSoThatTheRestStaysAligned)
{
    demo::playHostile(m_session, "name");
    ASSERT_EQ(m_recorder.bytes().size() % recordSize, 0U);
    const std::vector<Message> records = m_recorder.records();
    std::vector<std::size_t> badRecordEnds;
    int fullContexts = 0;
    bool hasFullText = false;
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (!mayComeFromAnApplication(records[i]))
            badRecordEnds.push_back((i + 1) * recordSize);
        hasFullText = hasFullText || records[i].text(offset::text).size() == recordSize - offset::text;
        fullContexts += isFullContext(records[i]) ? 1 : 0;
    }
    EXPECT_FALSE(badRecordEnds.empty());
    EXPECT_EQ(m_recorder.settledAt(), badRecordEnds);
    EXPECT_EQ(fullContexts, 3);
    EXPECT_TRUE(hasFullText);
}

TEST_F(DemoScenario, crashEndsInTheMiddleOfARecordBehindItsLastError)
{
    demo::playCrash(m_session);
    EXPECT_NE(m_recorder.bytes().size() % recordSize, 0U);
    EXPECT_EQ(m_recorder.records().back().type(), Type::Error);
}
