// SPDX-License-Identifier: MIT
#include "control/CameraControlInt64Menu.h"

namespace ImageAcquisition
{

ICameraControlInt64Menu::~ICameraControlInt64Menu() = default;

CameraControlInt64Menu::CameraControlInt64Menu(NodeReference node, unsigned int id,
                                               char const* name)
    : CameraControlBaseMenu(Int64Menu, node, id, name)
{
}

void CameraControlInt64Menu::init(v4l2_queryctrl const& qc)
{
    CameraControlBaseMenu::init(qc);
    m_values.clear();
    probeItems();
}

void CameraControlInt64Menu::itemFound(v4l2_querymenu const& /*item*/) {}

long long CameraControlInt64Menu::value(int position) const
{
    return m_values.at(static_cast<std::size_t>(position));
}

} // namespace ImageAcquisition
