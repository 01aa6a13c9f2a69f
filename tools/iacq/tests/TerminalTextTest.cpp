// SPDX-License-Identifier: MIT
#include "TerminalText.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace
{

using Iacq::jsonText;
using Iacq::printable;
using Json = nlohmann::ordered_json;

/// What ends a line, steers a terminal or turns the direction of writing, in UTF-8.
constexpr char const* steering[] = {
    "\x01",         "\a",           "\b",           "\t",           "\n",           "\r",
    "\x1b",         "\x1f",         "\x7f",         "\xc2\x80",     "\xc2\x85",     "\xc2\x9b",
    "\xc2\x9f",     "\xd8\x9c",     "\xe2\x80\x8e", "\xe2\x80\x8f", "\xe2\x80\xa8", "\xe2\x80\xa9",
    "\xe2\x80\xaa", "\xe2\x80\xae", "\xe2\x81\xa6", "\xe2\x81\xa9"};

TEST(TerminalTextTest, LeavesOrdinaryTextsAlone)
{
    for (std::string const text :
         {"", "Lab camera (2)", "M\xc3\xbcller", "\xc2\xa0", "\xd8\xa7\xd9\x84", "\xe2\x80\x8d",
          "\xe2\x80\xa7", "\xe2\x80\xaf", "\xe2\x81\xa5", "\xe2\x81\xaa", "\xed\x9f\xbf",
          "\xee\x80\x80", "\xf0\x9f\x93\xb7", "\xf4\x8f\xbf\xbf"}) {
        EXPECT_EQ(printable(text), text);
    }
}

TEST(TerminalTextTest, ReplacesWhateverSteersATerminal)
{
    for (std::string const text : steering) {
        EXPECT_EQ(printable("a" + text + "b"), "a?b") << Json(text).dump(-1, ' ', true);
    }
    EXPECT_EQ(printable(std::string("a\0b", 3)), "a?b");
}

TEST(TerminalTextTest, ReplacesEachByteThatIsNoUtf8)
{
    struct Case
    {
        char const* what;
        char const* text;
        char const* expected;
    };
    for (auto const& [what, text, expected] :
         {Case{"a raw C1 code",
               "\x9b"
               "2J",
               "?2J"},
          Case{"a lead byte alone", "\xc3", "?"},
          Case{"a sequence cut short by a letter",
               "\xe2\x80"
               "a",
               "??a"},
          Case{"overlong, two bytes", "\xc1\x9b", "??"},
          Case{"overlong, three bytes", "\xe0\x82\x9b", "???"},
          Case{"overlong, four bytes", "\xf0\x80\x82\x9b", "????"},
          Case{"a surrogate", "\xed\xa0\x80", "???"},
          Case{"beyond the last code point", "\xf4\x90\x80\x80", "????"},
          Case{"bytes that never occur", "\xf8\xff", "??"},
          Case{"a good one behind a bad one", "\xc3\xc3\xbc", "?\xc3\xbc"}}) {
        EXPECT_EQ(printable(text), expected) << what;
    }
}

TEST(TerminalTextTest, KeepsTextsInJsonAndNothingThatSteers)
{
    for (std::string const text : steering) {
        std::string const json = jsonText({{"name", "a" + text + "b"}});
        EXPECT_EQ(Json::parse(json).at("name"), "a" + text + "b");
        EXPECT_EQ(printable(json), json);
    }
    EXPECT_EQ(jsonText({{"name", "M\xc3\xbcller"}}), "{\"name\":\"M\xc3\xbcller\"}");
}

TEST(TerminalTextTest, PutsEachJsonValueOnALineWhenIndented)
{
    EXPECT_EQ(jsonText({{"a", "\n"}, {"b", 2}}, 2), "{\n  \"a\": \"\\n\",\n  \"b\": 2\n}");
}

TEST(TerminalTextTest, ReplacesBytesThatJsonCannotHold)
{
    for (std::string const bytes : {"\x9b", "\xc3", "\xc1\x9b", "\xed\xa0\x80", "\xff"}) {
        std::string const text = Json::parse(jsonText(Json("a" + bytes + "b")));
        EXPECT_EQ(text.substr(0, 4), "a\xef\xbf\xbd");
        EXPECT_EQ(text.back(), 'b');
    }
}

TEST(TerminalTextTest, TellsInOneLine)
{
    testing::internal::CaptureStderr();
    Iacq::tell("no control 'a\nb\xc2\x9bm'");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "iacq: no control 'a?b?m'\n");
}

} // namespace
