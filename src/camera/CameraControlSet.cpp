// SPDX-License-Identifier: MIT
#include "camera/CameraControlSet.h"

#include "control/CameraControlBaseMenu.h"
#include "control/CameraControlFactory.h"
#include "system/DriverBounds.h"

#include <algorithm>
#include <cstring>

namespace ImageAcquisition
{

namespace
{

/// How many numbers the driver was asked for to find the items of a menu; 0 for what is none.
long long indicesProbed(v4l2_queryctrl const& query)
{
    bool const isMenu =
        query.type == V4L2_CTRL_TYPE_MENU || query.type == V4L2_CTRL_TYPE_INTEGER_MENU;
    return isMenu ? CameraControlBaseMenu::indicesToProbe(query) : 0;
}

} // namespace

bool CameraControlSet::inOrder(std::unique_ptr<ICameraControl> const& a,
                               std::unique_ptr<ICameraControl> const& b)
{
    return std::strcmp(a->name(), b->name()) < 0;
}

void CameraControlSet::fill(NodeReference node)
{
    v4l2_queryctrl query{};
    query.id = V4L2_CTRL_FLAG_NEXT_CTRL;
    unsigned int previousId = 0;
    unsigned int skipped = 0;
    long long menuIndices = 0;
    // A driver whose ids do not rise would be asked for ever, and one whose ids do for very long.
    while (m_controls.size() < maximumControls && skipped < maximumControls &&
           menuIndices < maximumMenuIndicesOfCamera &&
           node.xioctl(VIDIOC_QUERYCTRL, &query) != -1 && query.id > previousId) {
        previousId = query.id;
        std::unique_ptr<ICameraControl> control(CameraControlFactory::createControl(node, query));
        skipped += control ? 0 : 1;
        menuIndices += indicesProbed(query);
        append(std::move(control));
        query.id |= V4L2_CTRL_FLAG_NEXT_CTRL;
    }
    std::sort(m_controls.begin(), m_controls.end(), inOrder);
}

void CameraControlSet::append(std::unique_ptr<ICameraControl> control)
{
    if (control) {
        m_controls.push_back(std::move(control));
    }
}

ICameraControl* CameraControlSet::at(int position) const
{
    return position < 0 || position >= size()
               ? invalid()
               : m_controls.at(static_cast<std::size_t>(position)).get();
}

template <typename Predicate>
ICameraControl* CameraControlSet::find(Predicate predicate) const
{
    auto const found = std::find_if(m_controls.begin(), m_controls.end(), predicate);
    return found == m_controls.end() ? invalid() : found->get();
}

ICameraControl* CameraControlSet::named(char const* name) const
{
    return find(
        [name](auto const& one) { return name != nullptr && std::strcmp(one->name(), name) == 0; });
}

ICameraControl* CameraControlSet::withId(unsigned int id) const
{
    return find([id](auto const& one) { return one->id() == id; });
}

} // namespace ImageAcquisition
