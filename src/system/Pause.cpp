// SPDX-License-Identifier: MIT
#include "system/Pause.h"

#include <cerrno>
#include <ctime>

namespace ImageAcquisition
{

namespace
{

constexpr long nanosecondsPerSecond = 1000000000;

timespec pointInTime(std::chrono::nanoseconds fromNow)
{
    timespec point{};
    clock_gettime(CLOCK_MONOTONIC, &point);
    point.tv_sec += static_cast<time_t>(fromNow.count() / nanosecondsPerSecond);
    point.tv_nsec += static_cast<long>(fromNow.count() % nanosecondsPerSecond);
    if (point.tv_nsec >= nanosecondsPerSecond) {
        ++point.tv_sec;
        point.tv_nsec -= nanosecondsPerSecond;
    }
    return point;
}

} // namespace

void pauseFor(std::chrono::milliseconds duration)
{
    // To a point in time: a signal handler ends the sleep, and times that remain are rounded up, so
    // that they would add up to more.
    timespec const end = pointInTime(duration);
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr) == EINTR) {
    }
}

} // namespace ImageAcquisition
