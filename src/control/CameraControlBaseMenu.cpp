// SPDX-License-Identifier: MIT
#include "control/CameraControlBaseMenu.h"

#include "system/DriverBounds.h"

#include <algorithm>

namespace ImageAcquisition
{

ICameraControlBaseMenu::~ICameraControlBaseMenu() = default;

CameraControlBaseMenu::CameraControlBaseMenu(Type type, NodeReference node, unsigned int id,
                                             char const* name)
    : CameraControl(type, node, id, name)
{
}

long long CameraControlBaseMenu::indicesToProbe(v4l2_queryctrl const& menu)
{
    // In 64 bits: the numbers from INT_MIN to INT_MAX are more than an int counts.
    long long const width = static_cast<long long>(menu.maximum) - menu.minimum + 1;
    return std::clamp<long long>(width, 0, maximumMenuIndices);
}

void CameraControlBaseMenu::init(v4l2_queryctrl const& qc)
{
    CameraControl::init(qc);
    m_defaultValue = qc.default_value;
    m_minimum = qc.minimum;
    m_indicesToProbe = indicesToProbe(qc);
    m_indices.clear();
}

void CameraControlBaseMenu::probeItems()
{
    for (long long probed = 0; probed < m_indicesToProbe; ++probed) {
        auto const index = static_cast<unsigned int>(m_minimum + probed);
        v4l2_querymenu item{};
        item.id = id();
        item.index = index;
        if (node().xioctl(VIDIOC_QUERYMENU, &item) != -1) {
            m_indices.push_back(index);
            itemFound(item);
        }
    }
}

int CameraControlBaseMenu::defaultIndex() const
{
    return reverseIndexMapping(static_cast<unsigned int>(m_defaultValue));
}

int CameraControlBaseMenu::currentIndex() const
{
    return isWriteOnly() ? -1
                         : reverseIndexMapping(static_cast<unsigned int>(inquireControlValue()));
}

bool CameraControlBaseMenu::setCurrentIndex(int position)
{
    // A position outside the list is sent as -1: the driver's refusal is the answer.
    return !refusesWrites() && setControlValue(static_cast<int>(directIndexMapping(position)));
}

unsigned int CameraControlBaseMenu::directIndexMapping(int position) const
{
    if (position < 0 || static_cast<std::size_t>(position) >= m_indices.size()) {
        return static_cast<unsigned int>(-1);
    }
    return m_indices[static_cast<std::size_t>(position)];
}

int CameraControlBaseMenu::reverseIndexMapping(unsigned int driverIndex) const
{
    auto const found = std::find(m_indices.begin(), m_indices.end(), driverIndex);
    return found == m_indices.end() ? -1 : static_cast<int>(found - m_indices.begin());
}

} // namespace ImageAcquisition
