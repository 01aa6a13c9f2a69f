// SPDX-License-Identifier: MIT
#include "camera/Camera.h"
#include "control/CameraControlFactory.h"
#include "system/DriverBounds.h"

#include <linux/videodev2.h>

#include <algorithm>
#include <cstring>

namespace ImageAcquisition
{

namespace
{

/// How many numbers the driver was asked for to find the items of a menu; 0 for what is none.
long long indicesToProbe(v4l2_queryctrl const& query)
{
    bool const isMenu =
        query.type == V4L2_CTRL_TYPE_MENU || query.type == V4L2_CTRL_TYPE_INTEGER_MENU;
    long long const width = static_cast<long long>(query.maximum) - query.minimum + 1;
    return isMenu ? std::clamp<long long>(width, 0, maximumMenuIndices) : 0;
}

} // namespace

bool Camera::buildMainControlSet()
{
    v4l2_queryctrl query{};
    query.id = V4L2_CTRL_FLAG_NEXT_CTRL;
    unsigned int previousId = 0;
    unsigned int skipped = 0;
    long long menuIndices = 0;
    // A driver whose ids do not rise would be asked for ever, and one whose ids do for very long.
    while (m_controls.size() < maximumControls && skipped < maximumControls &&
           menuIndices < maximumMenuIndicesOfCamera &&
           m_node.xioctl(VIDIOC_QUERYCTRL, &query) != -1 && query.id > previousId) {
        previousId = query.id;
        std::unique_ptr<ICameraControl> control(CameraControlFactory::createControl(*this, query));
        skipped += control ? 0 : 1;
        menuIndices += indicesToProbe(query);
        appendControl(std::move(control));
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

} // namespace ImageAcquisition
