// SPDX-License-Identifier: MIT
#include "control/CameraControlStringMenu.h"

#include "system/KernelText.h"

namespace ImageAcquisition
{

ICameraControlStringMenu::~ICameraControlStringMenu() = default;

CameraControlStringMenu::CameraControlStringMenu(NodeReference node, unsigned int id,
                                                 char const* name)
    : CameraControlBaseMenu(StringMenu, node, id, name)
{
}

void CameraControlStringMenu::init(v4l2_queryctrl const& qc)
{
    CameraControlBaseMenu::init(qc);
    m_names.clear();
    probeItems();
}

void CameraControlStringMenu::itemFound(v4l2_querymenu const& item)
{
    m_names.push_back(kernelText(item.name));
}

char const* CameraControlStringMenu::string(int position) const
{
    return m_names.at(static_cast<std::size_t>(position)).c_str();
}

} // namespace ImageAcquisition
