// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControlBaseMenu.h"

namespace ImageAcquisition
{

/**
 * @brief A setting that is one of a list of numbers.
 *
 * The numbers themselves are not kept: count() is 0, and the three operations below throw for every
 * position. Positions work: currentIndex(), defaultIndex() and setCurrentIndex() are those of
 * ICameraControlBaseMenu. Threads: the controls' thread.
 */
class IMAGEACQUISITION_EXPORT ICameraControlInt64Menu : public virtual ICameraControlBaseMenu
{
public:
    ~ICameraControlInt64Menu() override;

    /// Value of the present item.
    /// @throws std::out_of_range always.
    virtual long long currentValue() const = 0;

    /// Value of the item that the camera starts with.
    /// @throws std::out_of_range always.
    virtual long long defaultValue() const = 0;

    /// Value of the item at @p position.
    /// @throws std::out_of_range outside 0 to count() - 1, so always.
    virtual long long value(int position) const = 0;
};

} // namespace ImageAcquisition
