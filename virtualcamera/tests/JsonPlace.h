// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <cctype>
#include <string>

/// A place, as the name of a test may be.
template <typename Param>
std::string nameOf(testing::TestParamInfo<Param> const& info)
{
    std::string name = info.param.place + std::string("_") + std::to_string(info.index);
    for (char& letter : name) {
        letter = std::isalnum(static_cast<unsigned char>(letter)) != 0 ? letter : '_';
    }
    return name;
}
