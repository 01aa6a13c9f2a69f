// SPDX-License-Identifier: MIT
#include "camera/Camera.h"
#include "control/CameraControlFactory.h"
#include "factory/HelperV4l2.h"

#include <linux/videodev2.h>

#include <algorithm>
#include <cstring>

namespace ImageAcquisition
{

bool Camera::buildMainControlSet()
{
    v4l2_queryctrl query{};
    query.id = V4L2_CTRL_FLAG_NEXT_CTRL;
    unsigned int previousId = 0;
    // A driver whose ids do not rise would be asked for ever.
    while (HelperV4l2::xioctl(m_fd, VIDIOC_QUERYCTRL, &query) != -1 && query.id > previousId) {
        previousId = query.id;
        appendControl(
            std::unique_ptr<ICameraControl>(CameraControlFactory::createControl(*this, query)));
        query.id |= V4L2_CTRL_FLAG_NEXT_CTRL;
    }
    if (m_controls.size() >= 2) {
        std::sort(m_controls.begin(), m_controls.end(), compareControls);
    }
    return true;
}

void Camera::appendControl(std::unique_ptr<ICameraControl> control)
{
    if (control) {
        m_controls.push_back(std::move(control));
    }
}

bool Camera::compareControls(std::unique_ptr<ICameraControl> const& a,
                             std::unique_ptr<ICameraControl> const& b)
{
    return std::strcmp(a->name(), b->name()) < 0;
}

int Camera::controlNumber() const
{
    return static_cast<int>(m_controls.size());
}

ICameraControl* Camera::control(int position) const
{
    if (position < 0 || position >= controlNumber()) {
        return m_invalidControl.get();
    }
    return m_controls.at(static_cast<std::size_t>(position)).get();
}

ICameraControl* Camera::control(char const* name) const
{
    auto const found = std::find_if(m_controls.begin(), m_controls.end(), [name](auto const& one) {
        return name != nullptr && std::strcmp(one->name(), name) == 0;
    });
    return found == m_controls.end() ? m_invalidControl.get() : found->get();
}

ICameraControl* Camera::controlById(unsigned int id) const
{
    auto const found = std::find_if(m_controls.begin(), m_controls.end(),
                                    [id](auto const& one) { return one->id() == id; });
    return found == m_controls.end() ? m_invalidControl.get() : found->get();
}

ICameraControl* Camera::vendorControl(unsigned int offset) const
{
    // Another maker's driver may use the same private ids for something else.
    return m_device.isaZorvaneDevice() ? controlById(V4L2_CID_PRIVATE_BASE + offset)
                                       : m_invalidControl.get();
}

ICameraControl* Camera::focusControl() const
{
    return controlById(V4L2_CID_FOCUS_ABSOLUTE);
}

ICameraControl* Camera::autoFocusControl() const
{
    return controlById(V4L2_CID_FOCUS_AUTO);
}

ICameraControl* Camera::exposureAbsoluteControl() const
{
    return controlById(V4L2_CID_EXPOSURE_ABSOLUTE);
}

ICameraControl* Camera::autoExposureControl() const
{
    return controlById(V4L2_CID_EXPOSURE_AUTO);
}

ICameraControl* Camera::gainControl() const
{
    return controlById(V4L2_CID_GAIN);
}

ICameraControl* Camera::autoWhiteBalanceControl() const
{
    return controlById(V4L2_CID_AUTO_WHITE_BALANCE);
}

ICameraControl* Camera::whiteBalanceTempControl() const
{
    return controlById(V4L2_CID_WHITE_BALANCE_TEMPERATURE);
}

ICameraControl* Camera::brightnessControl() const
{
    return controlById(V4L2_CID_BRIGHTNESS);
}

ICameraControl* Camera::contrastControl() const
{
    return controlById(V4L2_CID_CONTRAST);
}

ICameraControl* Camera::saturationControl() const
{
    return controlById(V4L2_CID_SATURATION);
}

ICameraControl* Camera::hueControl() const
{
    return controlById(V4L2_CID_HUE);
}

ICameraControl* Camera::autoHueControl() const
{
    return controlById(V4L2_CID_HUE_AUTO);
}

ICameraControl* Camera::gammaControl() const
{
    return controlById(V4L2_CID_GAMMA);
}

ICameraControl* Camera::sharpnessControl() const
{
    return controlById(V4L2_CID_SHARPNESS);
}

ICameraControl* Camera::lightModeControl() const
{
    return vendorControl(0);
}

ICameraControl* Camera::lightIntensityControl() const
{
    return vendorControl(1);
}

ICameraControl* Camera::cameraErrorControl() const
{
    return vendorControl(2);
}

ICameraControl* Camera::triggerAutoControl() const
{
    return vendorControl(4);
}

ICameraControl* Camera::autoContrastBrightnessControl() const
{
    return vendorControl(5);
}

ICameraControl* Camera::autoSaturationControl() const
{
    return vendorControl(6);
}

ICameraControl* Camera::autoSharpnessControl() const
{
    return vendorControl(7);
}

ICameraControl* Camera::keepAliveControl() const
{
    return vendorControl(8);
}

ICameraControl* Camera::focusWindowX1Control() const
{
    return vendorControl(9);
}

ICameraControl* Camera::focusWindowX2Control() const
{
    return vendorControl(10);
}

ICameraControl* Camera::focusWindowY1Control() const
{
    return vendorControl(11);
}

ICameraControl* Camera::focusWindowY2Control() const
{
    return vendorControl(12);
}

ICameraControl* Camera::lockAutoControlsControl() const
{
    return vendorControl(13);
}

ICameraControl* Camera::windowSelectedControl() const
{
    return vendorControl(14);
}

ICameraControl* Camera::focusMinControl() const
{
    return vendorControl(15);
}

ICameraControl* Camera::focusMaxControl() const
{
    return vendorControl(16);
}

ICameraControl* Camera::focusStepControl() const
{
    return vendorControl(17);
}

ICameraControl* Camera::focusSensitivityControl() const
{
    return vendorControl(21);
}

ICameraControl* Camera::focusStrategyControl() const
{
    return vendorControl(26);
}

ICameraControl* Camera::exposureSensitivityControl() const
{
    return vendorControl(27);
}

ICameraControl* Camera::autoGammaControl() const
{
    return vendorControl(28);
}

} // namespace ImageAcquisition
