#include "Message.h"

#include <string>

#include <gtest/gtest.h>

using ui::messages::Message;
using ui::messages::recordSize;
namespace offset = ui::messages::offset;

TEST(Message, controlRecordsAreWholeAndHoldNothingElse)
{
    const Message message = Message::wireframeOn();
    EXPECT_EQ(std::string(message.data(), 12), std::string("\xFF\xFF\xFF\xFF\x0C\0\0\0\0\0\0\0", 12));
    EXPECT_EQ(Message::notifyServerStop().rawType(), 11U);
    EXPECT_EQ(Message::wireframeOff().rawType(), 13U);
}

TEST(Message, textEndsWithItsField)
{
    Message message;
    std::memset(message.data(), 'x', recordSize);
    EXPECT_EQ(message.text(offset::glErrorFunction, offset::glErrorDescription).size(), 64U);
    EXPECT_EQ(message.text(offset::text).size(), recordSize - 8) << "at most the rest of the record";
    EXPECT_TRUE(message.text(recordSize).empty());
    EXPECT_TRUE(message.text(100, recordSize + 100).size() == recordSize - 100);

    message.setText(offset::glErrorFunction, std::string(1000, 'f'), offset::glErrorDescription);
    EXPECT_EQ(message.text(offset::glErrorFunction, offset::glErrorDescription).size(), 63U);
    EXPECT_EQ(message.u8(offset::glErrorDescription), 'x') << "the next field is not touched";
}

TEST(Message, integersAreLittleEndianAndStayInTheRecord)
{
    Message message;
    message.setU32(offset::contextNumber, 0xFFFFFFFE);
    message.setU32(recordSize - 2, 0x04030201);
    EXPECT_EQ(message.i32(offset::contextNumber), -2);
    EXPECT_EQ(message.u8(recordSize - 1), 2);
    EXPECT_EQ(message.u32(recordSize - 2), 0U) << "reaches beyond the record";
    EXPECT_EQ(message.u8(recordSize), 0U);
}
