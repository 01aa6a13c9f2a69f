// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>

/// A value of a test under the name by which the test is listed.
template <typename Value>
struct Named
{
    char const* name;
    Value value;
};

template <typename Value>
void PrintTo(Named<Value> const& one, std::ostream* stream)
{
    *stream << one.name;
}

/// For INSTANTIATE_TEST_SUITE_P.
template <typename Value>
std::string nameOf(testing::TestParamInfo<Named<Value>> const& info)
{
    return info.param.name;
}
