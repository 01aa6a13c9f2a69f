// SPDX-License-Identifier: MIT
#include "JsonPlace.h"
#include "VirtualCamera.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace
{

using namespace VirtualCamera;

/// A key that takes a number, within a camera that is right but for `#`, the number's place.
struct NumericKey
{
    char const* place; ///< Where in a camera the key is.
    char const* camera;
    char const* highest;
    char const* below; ///< One less than the lowest.
    char const* above; ///< One more than the highest.
};

constexpr char const* uint32Max = "4294967295";
constexpr char const* aboveUint32 = "4294967296";
constexpr char const* int64Max = "9223372036854775807";
constexpr char const* belowInt64 = "-9223372036854775809";
constexpr char const* aboveInt64 = "9223372036854775808";

NumericKey word(char const* place, char const* camera)
{
    return {place, camera, uint32Max, "-1", aboveUint32};
}

NumericKey wide(char const* place, char const* camera)
{
    return {place, camera, int64Max, belowInt64, aboveInt64};
}

class JsonNumberTest : public testing::TestWithParam<NumericKey>
{
protected:
    static std::string configuration(std::string const& number)
    {
        std::string text = GetParam().camera;
        text.replace(text.find('#'), 1, number);
        return "{\"cameras\": [" + text + "]}";
    }
    /// What is said of the number, after the key's place; empty when it is taken.
    static std::string complaintOf(std::string const& number)
    {
        std::string const place = std::string("configuration.cameras[0].") + GetParam().place;
        try {
            camerasFromJson(configuration(number));
        } catch (std::runtime_error const& failure) {
            std::string const text = failure.what();
            return text.rfind(place + ": ", 0) == 0 ? text.substr(place.size() + 2)
                                                    : "elsewhere: " + text;
        }
        return {};
    }
    static bool isRefused(std::string const& number)
    {
        std::string const complaint = complaintOf(number);
        bool const named = complaint.rfind("a whole number from ", 0) == 0 &&
                           complaint.find(" is expected, unlike ") != std::string::npos;
        EXPECT_TRUE(named) << GetParam().place << ": " << number << ": " << complaint;
        return named;
    }
};

TEST_P(JsonNumberTest, IsTakenUpToTheLargest)
{
    EXPECT_EQ(complaintOf("0"), "");
    EXPECT_EQ(complaintOf("1"), "");
    EXPECT_EQ(complaintOf("1.0"), "");
    EXPECT_EQ(complaintOf(GetParam().highest), "");
}

TEST_P(JsonNumberTest, IsRefusedBeyondItsEnds)
{
    EXPECT_TRUE(isRefused(GetParam().below));
    EXPECT_TRUE(isRefused(GetParam().above));
    EXPECT_TRUE(isRefused("1e30"));
    EXPECT_TRUE(isRefused("-1e30"));
}

TEST_P(JsonNumberTest, IsRefusedWhenItIsNotWhole)
{
    EXPECT_TRUE(isRefused("0.5"));
    EXPECT_TRUE(isRefused("true"));
    EXPECT_TRUE(isRefused("null"));
    EXPECT_TRUE(isRefused("[1]"));
}

INSTANTIATE_TEST_SUITE_P(OfACamera, JsonNumberTest,
                         testing::Values(word("currentWidth", R"({"currentWidth": #})"),
                                         word("currentHeight", R"({"currentHeight": #})"),
                                         word("stuckControlEnumerationAt",
                                              R"({"stuckControlEnumerationAt": #})"),
                                         word("mostBuffers", R"({"mostBuffers": #})"),
                                         word("fewestBuffers", R"({"fewestBuffers": #})"),
                                         word("vanishingFrame", R"({"vanishingFrame": #})")),
                         nameOf<NumericKey>);

#define FORMAT(rest) R"({"formats": [{"pixelFormat": "YUYV", )" rest "}]}"
#define SIZES(rest) FORMAT(R"("sizes": [{)" rest "}]")
#define RANGE(rest) FORMAT(R"("sizeKind": "stepwise", "sizeRange": {)" rest "}")

INSTANTIATE_TEST_SUITE_P(
    OfAFormat, JsonNumberTest,
    testing::Values(word("formats[0].sizes[0].width", SIZES(R"("width": #)")),
                    word("formats[0].sizes[0].height", SIZES(R"("height": #)")),
                    word("formats[0].sizeRange.minimumWidth", RANGE(R"("minimumWidth": #)")),
                    word("formats[0].sizeRange.maximumWidth", RANGE(R"("maximumWidth": #)")),
                    word("formats[0].sizeRange.stepWidth", RANGE(R"("stepWidth": #)")),
                    word("formats[0].sizeRange.minimumHeight", RANGE(R"("minimumHeight": #)")),
                    word("formats[0].sizeRange.maximumHeight", RANGE(R"("maximumHeight": #)")),
                    word("formats[0].sizeRange.stepHeight", RANGE(R"("stepHeight": #)")),
                    word("formats[0].bytesPerLine", FORMAT(R"("bytesPerLine": #)")),
                    word("formats[0].sizeImage", FORMAT(R"("sizeImage": #)"))),
    nameOf<NumericKey>);

#define CONTROL(rest) R"({"controls": [{"type": "menu", "id": 1, "name": "A", )" rest "}]}"

INSTANTIATE_TEST_SUITE_P(
    OfAControl, JsonNumberTest,
    testing::Values(
        word("controls[0].id", R"({"controls": [{"type": "menu", "name": "A", "id": #}]})"),
        word("controls[0].items[0].index", CONTROL(R"("items": [{"index": #}])")),
        wide("controls[0].items[0].value", CONTROL(R"("items": [{"value": #}])")),
        wide("controls[0].minimum", CONTROL(R"("minimum": #)")),
        wide("controls[0].maximum", CONTROL(R"("maximum": #)")),
        wide("controls[0].step", CONTROL(R"("step": #)")),
        wide("controls[0].default", CONTROL(R"("default": #)")),
        wide("controls[0].value", CONTROL(R"("value": #)")),
        word("controls[0].activeOnlyWhenControl", CONTROL(R"("activeOnlyWhenControl": #)")),
        wide("controls[0].activeOnlyWhenValue", CONTROL(R"("activeOnlyWhenValue": #)"))),
    nameOf<NumericKey>);

#define SELECTOR(rest)                                                                             \
    R"({"extensionUnit": {"guid": "01000000000000000000000000000000", "selectors": [{)" rest "}]}" \
    "}"

INSTANTIATE_TEST_SUITE_P(
    OfASelector, JsonNumberTest,
    testing::Values(NumericKey{"extensionUnit.selectors[0].selector", SELECTOR(R"("selector": #)"),
                               "255", "-1", "256"},
                    NumericKey{"extensionUnit.selectors[0].size", SELECTOR(R"("size": #)"), "65535",
                               "-1", "65536"}),
    nameOf<NumericKey>);

#define FAULT(rest) R"({"faults": [{"errno": "EIO", )" rest "}]}"
#define FRAME_FAULT(rest) R"({"frameFaults": [{)" rest "}]}"

INSTANTIATE_TEST_SUITE_P(
    OfAFault, JsonNumberTest,
    testing::Values(word("faults[0].use", FAULT(R"("use": #)")),
                    word("frameFaults[0].frame", FRAME_FAULT(R"("frame": #)")),
                    word("frameFaults[0].lateMilliseconds",
                         FRAME_FAULT(R"("lateMilliseconds": #)")),
                    word("frameFaults[0].bytesUsed", FRAME_FAULT(R"("bytesUsed": #)")),
                    word("frameFaults[0].claimedBytes", FRAME_FAULT(R"("claimedBytes": #)")),
                    word("frameFaults[0].index", FRAME_FAULT(R"("index": #)")),
                    NumericKey{"frameFaults[0].userPointer", FRAME_FAULT(R"("userPointer": #)"),
                               "18446744073709551615", "-1", "18446744073709551616"},
                    word("frameFaults[0].length", FRAME_FAULT(R"("length": #)"))),
    nameOf<NumericKey>);

} // namespace
