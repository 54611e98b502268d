#include "Notices.h"

#include <gtest/gtest.h>

/// Any program can send such a text, or half of one.
TEST(Notices, areRecognised)
{
    for (const char* name : {"Tarn 7", "Tarn (old) (2)", " (", "\xC3\xA4"})
        EXPECT_EQ(notices::deviceOf(notices::device(name, "OpenGL ES 1.1, 2.0 and 3.0")), name);
    const std::string whole = notices::device("Tarn 7", "no OpenGL ES");
    for (const std::string& text : {notices::device("", "OpenGL ES 2.0"), whole + " ", " " + whole,
             std::string("The program sees the profile ) in place of this machine."),
             std::string("The program sees the profile "), std::string()})
        EXPECT_FALSE(notices::deviceOf(text)) << text;
    for (const std::string& text : {notices::exited(3), notices::killed("SIGSEGV"),
             std::string(notices::timeIsOver) + '\0', std::string(notices::goesOn)})
        EXPECT_TRUE(notices::tellsEnd(text)) << text;
    for (const char* text : {"", "Ended", "It was killed by SIGSEGV", "ended with exit status 3"})
        EXPECT_FALSE(notices::tellsEnd(text)) << text;
}
