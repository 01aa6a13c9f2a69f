// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControl.h"

namespace ImageAcquisition
{

/**
 * @brief A setting that is one item of a list.
 *
 * Items are addressed by their position, 0, 1, 2 and so on, without gaps, whatever numbers the
 * driver gives them. Threads: the controls' thread.
 */
class IMAGEACQUISITION_EXPORT ICameraControlBaseMenu : public virtual ICameraControl
{
public:
    ~ICameraControlBaseMenu() override;

    /// Position of the item that the camera starts with; -1 when it is none of the list.
    virtual int defaultIndex() const = 0;

    /// Position of the present item, asked from the camera; -1 when it is none of the list or the
    /// control is write-only.
    virtual int currentIndex() const = 0;

    /// Selects an item. False when the control refuses writes at present (read-only, disabled,
    /// inactive, grabbed: nothing is sent then) or the camera refused it; a driver is asked even
    /// about positions that the list does not have, with an item number of -1.
    virtual bool setCurrentIndex(int position) = 0;

    /// Number of items whose texts or values can be asked for.
    virtual int count() const = 0;
};

} // namespace ImageAcquisition
