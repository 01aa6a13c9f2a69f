// SPDX-License-Identifier: MIT
#pragma once

#include "serial/ZorvaneCamera.h"
#include "serial/ZorvaneCameraControl.h"

/// While it lives, a camera's exchanges wait so long for a reply. A camera that is scripted to
/// answer shall not fail because the machine is busy; one that is scripted to be silent need not
/// take long.
class ReplyTimeout
{
public:
    static constexpr int usual = ImageAcquisition::ZorvaneCameraControl::_msTimeout;
    static constexpr int forAnswers = 8000;
    /// For tests in which the camera does both. Each silent exchange takes five times as long.
    static constexpr int forBoth = 300;

    ReplyTimeout(ImageAcquisition::ZorvaneCamera& camera, int milliseconds)
        : m_link(camera.link()), m_earlier(m_link.limits())
    {
        set(camera, milliseconds);
    }
    ReplyTimeout(ReplyTimeout const&) = delete;
    ReplyTimeout& operator=(ReplyTimeout const&) = delete;
    ~ReplyTimeout() { m_link.setLimits(m_earlier); }

    /// From now on.
    static void set(ImageAcquisition::ZorvaneCamera& camera, int milliseconds)
    {
        ImageAcquisition::SerialLink::Limits limits = camera.link().limits();
        limits.reply = milliseconds;
        camera.link().setLimits(limits);
    }

private:
    ImageAcquisition::SerialLink& m_link;
    ImageAcquisition::SerialLink::Limits m_earlier;
};
