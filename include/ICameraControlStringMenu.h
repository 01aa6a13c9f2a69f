// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControlBaseMenu.h"

namespace ImageAcquisition
{

/// A setting that is one of a list of texts. Texts live as long as the control. Threads: the
/// controls' thread.
class IMAGEACQUISITION_EXPORT ICameraControlStringMenu : public virtual ICameraControlBaseMenu
{
public:
    ~ICameraControlStringMenu() override;

    /// Text of the present item.
    /// @throws std::out_of_range when currentIndex() is -1.
    virtual char const* currentString() const = 0;

    /// Text of the item that the camera starts with.
    /// @throws std::out_of_range when defaultIndex() is -1.
    virtual char const* defaultString() const = 0;

    /// Text of the item at @p position.
    /// @throws std::out_of_range outside 0 to count() - 1.
    virtual char const* string(int position) const = 0;
};

} // namespace ImageAcquisition
