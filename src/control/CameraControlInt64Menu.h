// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControlInt64Menu.h"
#include "control/CameraControlBaseMenu.h"

#include <vector>

namespace ImageAcquisition
{

/// A V4L2 menu whose items are numbers. It has positions, but no numbers and a count of 0. Kept as
/// it is: docs/behaviour.md, Controls.
class CameraControlInt64Menu : public CameraControlBaseMenu, public virtual ICameraControlInt64Menu
{
public:
    CameraControlInt64Menu(NodeReference node, unsigned int id, char const* name);

    void init(v4l2_queryctrl const& qc) override;
    int count() const override { return static_cast<int>(m_values.size()); }
    long long currentValue() const override { return value(currentIndex()); }
    long long defaultValue() const override { return value(defaultIndex()); }
    long long value(int position) const override;

protected:
    void itemFound(v4l2_querymenu const& item) override;

private:
    std::vector<long long> m_values;
};

} // namespace ImageAcquisition
