// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControlBaseMenu.h"
#include "control/CameraControl.h"

#include <vector>

namespace ImageAcquisition
{

/// A V4L2 menu. Drivers may leave holes between the item numbers; positions have none.
class CameraControlBaseMenu : public CameraControl, public virtual ICameraControlBaseMenu
{
public:
    CameraControlBaseMenu(Type type, NodeReference node, unsigned int id, char const* name);

    /// How many numbers a driver is asked for to find the items of a menu of these bounds.
    static long long indicesToProbe(v4l2_queryctrl const& menu);

    /// Takes over the bounds and forgets all items.
    void init(v4l2_queryctrl const& qc) override;
    int defaultIndex() const override;
    int currentIndex() const override;
    bool setCurrentIndex(int position) override;

    /// The driver's item number at a position; all bits set when there is none.
    unsigned int directIndexMapping(int position) const;

    /// The first position with the driver's item number, or -1.
    int reverseIndexMapping(unsigned int driverIndex) const;

protected:
    /// Asks the driver for every number between the bounds, as far as a menu may reach, and keeps
    /// those that are items, each of which is told to itemFound().
    void probeItems();
    virtual void itemFound(v4l2_querymenu const& item) = 0;

private:
    int m_defaultValue = 0;
    int m_minimum = 0;
    long long m_indicesToProbe = 0;
    std::vector<unsigned int> m_indices;
};

} // namespace ImageAcquisition
