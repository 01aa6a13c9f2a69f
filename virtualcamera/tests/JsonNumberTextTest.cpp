// SPDX-License-Identifier: MIT
#include "JsonPlace.h"
#include "VirtualCamera.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using namespace VirtualCamera;

struct NumberText
{
    char const* place;
    std::string camera;
    std::string complaint;
};

class JsonNumberTextTest : public testing::TestWithParam<NumberText>
{
};

TEST_P(JsonNumberTextTest, IsRefusedByItsPlace)
{
    std::string complaint;
    try {
        camerasFromJson("{\"cameras\": [" + GetParam().camera + "]}");
    } catch (std::runtime_error const& failure) {
        complaint = failure.what();
    }
    EXPECT_EQ(complaint, std::string("configuration.cameras[0].") + GetParam().place + ": " +
                             GetParam().complaint);
}

std::vector<NumberText> wrongTexts()
{
    std::vector<NumberText> texts;
    for (std::string const text :
         {"-1/30", "1/-30", "1/4294967296", "1/30/2", "1.5/30", "1/", ""}) {
        texts.push_back({"currentInterval", "{\"currentInterval\": \"" + text + "\"}",
                         "an interval is written as \"1/30\", unlike \"" + text + "\""});
    }
    for (std::string const text : {"-6.1.0", "65536.1.0", "6.256.0", "6.1.256", "6.1", "6.1.0x"}) {
        texts.push_back({"driverVersion", "{\"driverVersion\": \"" + text + "\"}",
                         "a version is written as \"6.1.0\", up to \"65535.255.255\", unlike \"" +
                             text + "\""});
    }
    for (std::string const text : {"-1", " 1", "0x", "1x", ""}) {
        texts.push_back({"stuckControlEnumerationAt",
                         "{\"stuckControlEnumerationAt\": \"" + text + "\"}",
                         "\"" + text + "\" is no number"});
    }
    texts.push_back({"stuckControlEnumerationAt", R"({"stuckControlEnumerationAt": "0x100000000"})",
                     "\"0x100000000\" is above 0xffffffff"});
    return texts;
}

INSTANTIATE_TEST_SUITE_P(OfAnyKind, JsonNumberTextTest, testing::ValuesIn(wrongTexts()),
                         nameOf<NumberText>);

} // namespace
