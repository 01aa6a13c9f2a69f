// SPDX-License-Identifier: MIT
#pragma once

#include "serial/ZorvaneCameraControl.h"

/// While it lives, exchanges wait so long for a reply. A camera that is scripted to answer shall
/// not fail because the machine is busy; one that is scripted to be silent need not take long.
class ReplyTimeout
{
public:
    static constexpr int forAnswers = 8000;
    /// For tests in which the camera does both. Each silent exchange takes five times as long.
    static constexpr int forBoth = 300;

    explicit ReplyTimeout(int milliseconds)
        : _earlier(ImageAcquisition::ZorvaneCameraControl::msReplyTimeout)
    {
        ImageAcquisition::ZorvaneCameraControl::msReplyTimeout = milliseconds;
    }
    ReplyTimeout(ReplyTimeout const&) = delete;
    ReplyTimeout& operator=(ReplyTimeout const&) = delete;
    ~ReplyTimeout() { ImageAcquisition::ZorvaneCameraControl::msReplyTimeout = _earlier; }

private:
    int _earlier;
};
