// SPDX-License-Identifier: MIT
#include "CaptureTime.h"

#include <algorithm>

namespace ImageAcquisition::Session
{

namespace
{

using namespace std::chrono;

/// Some drivers work the stamp out from the camera's own clock, and are ahead of ours by a little.
constexpr microseconds mostAhead = seconds(1);
/// More than a frame waits in a program that was halted, and less than lies between two clocks.
constexpr microseconds mostBehind = minutes(1);

bool isNear(microseconds age)
{
    return age > -mostAhead && age < mostBehind;
}

microseconds since(unsigned long long stamped, microseconds now)
{
    return microseconds(
        static_cast<long long>(static_cast<unsigned long long>(now.count()) - stamped));
}

microseconds timeOfDay()
{
    return duration_cast<microseconds>(system_clock::now().time_since_epoch());
}

} // namespace

steady_clock::time_point capturedAt(FrameTimeStamp stamp, steady_clock::time_point now)
{
    // Without signs, so that what a broken driver says may overflow.
    auto const whole = static_cast<unsigned long long>(stamp.seconds) * 1000000ULL;
    unsigned long long const stamped = whole + static_cast<unsigned long long>(stamp.microseconds);
    if (stamped == 0) {
        return now;
    }
    microseconds age = since(stamped, duration_cast<microseconds>(now.time_since_epoch()));
    if (!isNear(age)) {
        age = since(stamped, timeOfDay());
    }
    return isNear(age) ? now - std::max(age, microseconds(0)) : now;
}

} // namespace ImageAcquisition::Session
