#include "NormalText.h"
#include "Signature.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

using sessions::normalised;

namespace {

struct Pair {
    const char* text;
    const char* result;
};

} // namespace

TEST(NormalText, replacesWhatDiffersFromTimeToTime)
{
    const Pair pairs[] = {
        {"", ""},
        {"glDrawArrays(mode = GL_TRIANGLES, first = 0, count = -1)",
            "glDrawArrays(mode = GL_TRIANGLES, first = #, count = #)"},
        {"GL_TEXTURE0 glUniform4fv vec4 u_1", "GL_TEXTURE0 glUniform4fv vec4 u_1"},
        {"1.5e-3, .5, 1.0f, 10u, 1e9", "#, .#, #f, #u, #"},
        {"640x480 2D 3Dx 16ms", "#x# 2D #Dx #ms"},
        {"a-1 3-1 (-7) -2", "a-# #-# (#) #"},
        {"at 0x7fFe12ab, 0xZZ", "at #, #xZZ"},
        {"deadbeef c0ffee12 7f3a90b4c d00d1", "deadbeef # # d00d1"},
        {"in /home/me/build-12/a b.frag:12", "in .../a b.frag:#"},
        {"'/tmp/x/y/shader.frag' and/or /single 1/2", "'.../shader.frag' and/or /single #/#"},
        {"../up/a.frag .../down //", "../up/a.frag .../down //"},
        {"f\xC3\xBCr 3 \xE2\x82\xAC"
         "5 \xFF\xFE 7",
            "f\xC3\xBCr # \xE2\x82\xAC"
            "5 \xFF\xFE #"},
        {"two\nlines 1\r\n \n", "two\nlines #"},
    };
    for (const Pair& pair : pairs)
        EXPECT_EQ(normalised(pair.text), pair.result);
}

TEST(NormalText, changesNothingTheSecondTime)
{
    constexpr std::string_view alphabet = "0179aefxXDEz_/.-+ ,()#:\n\"\xC3\xA9";
    std::mt19937 random(7);
    for (int i = 0; i < 20'000; ++i) {
        std::string text;
        for (auto length = random() % 40; length > 0; --length)
            text += alphabet[random() % alphabet.size()];
        const std::string once = normalised(text);
        ASSERT_EQ(normalised(once), once) << text;
    }
}

TEST(NormalText, takesLinearTime)
{
    for (const char* piece : {"/", "/a", "0", "a1", "1.", "-1", "1e", "0x", "1a"}) {
        std::string text;
        while (text.size() < 400'000)
            text += piece;
        text += 'z';
        EXPECT_LE(normalised(text).size(), text.size() + 8);
    }
}

TEST(Signature, takesEglCodesFromTheText)
{
    using sessions::Severity;
    const auto signature = [](const char* text, const char* function = "") {
        return sessions::signatureOf(Severity::Error, function, "", text);
    };
    const auto made = signature("EGL_BAD_MATCH in eglCreateContext(dpy = 0x12)");
    EXPECT_EQ(made.code, "EGL_BAD_MATCH");
    EXPECT_EQ(made.function, "eglCreateContext");
    EXPECT_EQ(made.text, "EGL_BAD_MATCH in eglCreateContext(dpy = #)");
    EXPECT_EQ(signature("EGL_BAD_MATCH in general").code, "");
    EXPECT_EQ(signature("EGL_BAD_MATCH in eglA", "glB").code, "");
}

/// A list of known kinds is normalised each time it is read.
TEST(Signature, cutTextStaysAsItIs)
{
    std::string text;
    while (text.size() < sessions::signatureTextLimit - 10)
        text += "/a/b  "; // becomes longer
    const sessions::Signature once = sessions::signatureOf(sessions::Severity::Error, "f", "c", text);
    EXPECT_GT(once.text.size(), sessions::signatureTextLimit - 20);
    EXPECT_EQ(sessions::signatureOf(sessions::Severity::Error, "f", "c", once.text), once);
}

TEST(Signature, cutsLongTextsBetweenCharacters)
{
    std::string text(sessions::signatureTextLimit - 1, 'x');
    const auto cut = sessions::signatureOf(sessions::Severity::Error, "", "",
        text
            + "\xC3\xA9"
              "more");
    EXPECT_EQ(cut.text, text);
    EXPECT_EQ(sessions::cutText("\x80\x80\x80\x80\x80\x80", 5).size(), 1U) << "no UTF-8: cut somewhere";
}
