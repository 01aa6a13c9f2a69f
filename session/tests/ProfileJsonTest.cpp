// SPDX-License-Identifier: MIT
// Profiles as texts and files.
#include "ErrorOf.h"
#include "ScratchFolder.h"

#include "session/Profile.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <limits>

namespace
{

using namespace ImageAcquisition::Session;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

char const whole[] = R"({
  "version": 1,
  "camera": "serial:VC1001",
  "selection": {
    "format": "YUYV",
    "width": 640,
    "height": 480,
    "rate": "30000/1001"
  },
  "controls": {
    "White Balance, Automatic": false,
    "Auto Exposure": "Manual Mode",
    "Gain": -3,
    "Brightness": 9223372036854775807
  }
}
)";

/// What is said about a text that is no profile.
std::string faultOf(std::string const& text)
{
    auto const error = errorOf([&] { Profile::fromJson(text); });
    if (!error) {
        return "none";
    }
    EXPECT_EQ(error->kind(), ErrorKind::BadRequest) << text;
    return error->reason();
}

std::string withControl(std::string const& value)
{
    return R"({"version": 1, "controls": {"Gain": )" + value + "}}";
}

std::string withSelection(std::string const& selection)
{
    return R"({"version": 1, "selection": )" + selection + "}";
}

TEST(ProfileJsonTest, IsReadAndWrittenInTheSameOrder)
{
    Profile const profile = Profile::fromJson(whole);
    EXPECT_EQ(profile.camera(), "serial:VC1001");
    EXPECT_EQ(profile.selection().format, "YUYV");
    EXPECT_EQ(profile.selection().width, 640U);
    EXPECT_EQ(profile.selection().height, 480U);
    EXPECT_EQ(profile.selection().rate.frames, 30000U);
    EXPECT_EQ(profile.selection().rate.seconds, 1001U);
    EXPECT_THAT(
        profile.controls(),
        ElementsAre(Pair("White Balance, Automatic", ControlValue(false)),
                    Pair("Auto Exposure", ControlValue("Manual Mode")),
                    Pair("Gain", ControlValue(-3)),
                    Pair("Brightness", ControlValue(std::numeric_limits<long long>::max()))));
    EXPECT_EQ(profile.json(), whole);
}

TEST(ProfileJsonTest, MayLeaveOutEverythingButItsVersion)
{
    Profile const profile = Profile::fromJson(R"({"version": 1})");
    EXPECT_EQ(profile.camera(), "");
    EXPECT_EQ(profile.selection(), Selection());
    EXPECT_THAT(profile.controls(), testing::IsEmpty());
    EXPECT_EQ(Profile::fromJson(profile.json()).json(), profile.json());
    EXPECT_EQ(Profile::fromJson(withSelection("{}")).selection(), Selection());
    EXPECT_EQ(Profile::fromJson(withSelection(R"({"rate": "29.97"})")).selection().rate.text(),
              "29.97");
}

TEST(ProfileJsonTest, TellsWhereATextIsNoJson)
{
    EXPECT_THAT(faultOf("{\n \"version\": 1,\n}"),
                HasSubstr("no JSON: parse error at line 3, column 1"));
    for (char const* const text :
         {"", "{", "nonsense", "\xff\xfe", "{\"version\": 1} x", "\"\\ud800\""}) {
        EXPECT_THAT(faultOf(text), HasSubstr("no JSON: ")) << text;
    }
    EXPECT_THAT(faultOf(std::string(100000, '[')), HasSubstr("no JSON: "));
    EXPECT_THAT(faultOf(std::string(R"({"version": 1, "controls": )") + std::string(50000, '[') +
                        std::string(50000, ']') + "}"),
                "/controls: must be an object");
}

TEST(ProfileJsonTest, IsNotReadWhenItIsCutAnywhere)
{
    std::string const text = whole;
    for (std::size_t size = 0; size < text.size() - 2; ++size) {
        EXPECT_THAT(faultOf(text.substr(0, size)), HasSubstr("no JSON: ")) << size;
    }
}

TEST(ProfileJsonTest, IsNotReadInAnotherVersion)
{
    EXPECT_EQ(faultOf(R"({"version": 2, "novelty": 5})"),
              "/version: 2 is not known; this library reads version 1");
    EXPECT_THAT(faultOf(R"({"version": 18446744073709551615})"), HasSubstr("is not known"));
    EXPECT_THAT(faultOf(R"({"version": -1})"), HasSubstr("-1 is not known"));
    for (char const* const text :
         {"{}", R"({"version": "1"})", R"({"version": 1.0})", R"({"version": null})"}) {
        EXPECT_EQ(faultOf(text), "/version: must be a whole number") << text;
    }
}

TEST(ProfileJsonTest, TellsWhatIsOfTheWrongType)
{
    for (char const* const text : {"[]", "null", "1", "\"text\"", "true"}) {
        EXPECT_EQ(faultOf(text), "/: must be an object") << text;
    }
    EXPECT_EQ(faultOf(R"({"version": 1, "camera": 5})"), "/camera: must be a text");
    EXPECT_EQ(faultOf(R"({"version": 1, "controls": []})"), "/controls: must be an object");
    EXPECT_EQ(faultOf(R"({"version": 1, "contrls": {}})"), "/contrls: is not known");
    for (char const* const value :
         {"null", "[]", "{}", "1.5", "1e3", "9223372036854775808", "-9223372036854775809"}) {
        EXPECT_EQ(faultOf(withControl(value)),
                  "/controls/Gain: must be a whole number of 64 bits, a Boolean or a text")
            << value;
    }
    EXPECT_EQ(faultOf(withControl("-9223372036854775808")), "none");
}

TEST(ProfileJsonTest, TellsWhatIsNoSelection)
{
    EXPECT_EQ(faultOf(withSelection("\"YUYV\"")), "/selection: must be an object");
    EXPECT_EQ(faultOf(withSelection(R"({"size": 1})")), "/selection/size: is not known");
    EXPECT_EQ(faultOf(withSelection(R"({"format": 1})")), "/selection/format: must be a text");
    EXPECT_EQ(faultOf(withSelection(R"({"width": 640})")),
              "/selection: has only one of width and height");
    for (char const* const width : {"0", "-1", "1.5", "\"640\"", "4294967296", "null"}) {
        EXPECT_EQ(faultOf(withSelection(std::string(R"({"height": 480, "width": )") + width + "}")),
                  "/selection/width: must be a number of pixels")
            << width;
    }
    for (char const* const rate : {"", "fast", "0", "30/0", "30 GREY", "30 8x8"}) {
        EXPECT_EQ(faultOf(withSelection(std::string(R"({"rate": ")") + rate + "\"}")),
                  "/selection/rate: '" + std::string(rate) + "' is no frame rate");
    }
    EXPECT_EQ(faultOf(withSelection(R"({"rate": 30})")), "/selection/rate: must be a text");
}

TEST(ProfileJsonTest, IsNotReadWhereItIsTooLarge)
{
    EXPECT_EQ(faultOf(withControl("1" + std::string(1 << 17, ' '))), "too large for a profile");
}

TEST(ProfileJsonTest, KeepsRightsAndLinksOfTheFileThatItReplaces)
{
    ScratchFolder const folder;
    std::string const file = folder.write("file", "");
    std::filesystem::permissions(file, std::filesystem::perms(0600));
    std::filesystem::create_symlink(file, folder.path("link"));
    Profile::fromJson(whole).save(folder.path("link"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link")));
    EXPECT_EQ(folder.read("file"), whole);
    EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0600));
    EXPECT_THAT(folder.names(), testing::UnorderedElementsAre("file", "link"));
}

TEST(ProfileJsonTest, GetsControlsOneByOne)
{
    Profile profile = Profile::fromJson(withControl("1"));
    profile.set("Hue", "on");
    profile.set("Gain", 2);
    EXPECT_THAT(profile.controls(),
                ElementsAre(Pair("Gain", ControlValue(2)), Pair("Hue", ControlValue("on"))));
}

TEST(ProfileJsonTest, IsKeptInAFile)
{
    ScratchFolder const folder;
    Profile const profile = Profile::fromJson(whole);
    profile.save(folder.path("profile.json"));
    EXPECT_EQ(folder.read("profile.json"), whole);
    Profile::fromJson(R"({"version": 1})").save(folder.path("profile.json"));
    EXPECT_EQ(Profile::load(folder.path("profile.json")).camera(), "");
    EXPECT_THAT(folder.names(), ElementsAre("profile.json"));
}

TEST(ProfileJsonTest, TellsWhyAFileCannotBeReadOrWritten)
{
    ScratchFolder const folder;
    auto error = errorOf([&] { Profile::load(folder.path("none.json")); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::NotFound);
    EXPECT_EQ(error->systemError(), ENOENT);
    EXPECT_EQ(errorOf([&] { Profile::load(folder.path("")); })->kind(), ErrorKind::Refused);
    EXPECT_EQ(errorOf([] { Profile::load("/dev/zero"); })->kind(), ErrorKind::BadRequest);
    EXPECT_EQ(errorOf([&] { Profile::load(folder.write("bad", "{")); })->kind(),
              ErrorKind::BadRequest);
    EXPECT_EQ(errorOf([&] { Profile::load(folder.path(".")); })->systemError(), EISDIR);
    // A device is written to, never replaced.
    error = errorOf([] { Profile::fromJson(whole).save("/dev/full"); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->systemError(), ENOSPC);
    error = errorOf([&] { Profile::fromJson(whole).save(folder.path("none/profile.json")); });
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind(), ErrorKind::NotFound);
    // A folder is not replaced by a file, and nothing is left beside it.
    std::filesystem::create_directory(folder.path("folder"));
    EXPECT_EQ(errorOf([&] { Profile::fromJson(whole).save(folder.path("folder")); })->kind(),
              ErrorKind::Refused);
    EXPECT_THAT(folder.names(), testing::UnorderedElementsAre("bad", "folder"));
}

} // namespace
