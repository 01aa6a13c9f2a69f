// SPDX-License-Identifier: MIT
#include "factory/FirmwareRevision.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace ImageAcquisition
{

namespace
{

/// Reads one number and moves on behind it; false when there is none. Numbers beyond an int
/// saturate, since sscanf, which would read them in one go, leaves that case undefined.
bool readNumber(char const*& position, long long& number)
{
    char* end = nullptr;
    long long const value = std::strtoll(position, &end, 10);
    if (end == position) {
        return false;
    }
    number = std::clamp<long long>(value, std::numeric_limits<int>::min(),
                                   std::numeric_limits<int>::max());
    position = end;
    return true;
}

} // namespace

long long firmwareRank(char const* text)
{
    static constexpr char prefix[] = "TJ8-";
    static constexpr long long weights[] = {100, 10, 1};

    if (text == nullptr || std::strncmp(text, prefix, sizeof prefix - 1) != 0) {
        return 0;
    }
    char const* position = text + sizeof prefix - 1;
    long long rank = 0;
    for (long long const weight : weights) {
        long long number = 0;
        if (!readNumber(position, number)) {
            break;
        }
        rank += number * weight;
        if (*position != '.') {
            break;
        }
        ++position;
    }
    return rank;
}

bool hasSerialControls(long long rank)
{
    return rank > 129;
}

} // namespace ImageAcquisition
