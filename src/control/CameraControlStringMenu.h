// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControlStringMenu.h"
#include "control/CameraControlBaseMenu.h"

#include <string>
#include <vector>

namespace ImageAcquisition
{

/// A V4L2 menu whose items are texts.
class CameraControlStringMenu : public CameraControlBaseMenu,
                                public virtual ICameraControlStringMenu
{
public:
    CameraControlStringMenu(NodeReference node, unsigned int id, char const* name);

    void init(v4l2_queryctrl const& qc) override;
    int count() const override { return static_cast<int>(m_names.size()); }
    char const* currentString() const override { return string(currentIndex()); }
    char const* defaultString() const override { return string(defaultIndex()); }
    char const* string(int position) const override;

protected:
    void itemFound(v4l2_querymenu const& item) override;

private:
    std::vector<std::string> m_names;
};

} // namespace ImageAcquisition
