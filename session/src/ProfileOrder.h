// SPDX-License-Identifier: MIT
#pragma once

#include "session/Camera.h"
#include "session/Control.h"

#include <set>
#include <string>

namespace ImageAcquisition::Session
{

/// Knows which of a camera's controls decide whether others have an effect: they come first.
class ProfileOrder
{
public:
    explicit ProfileOrder(Camera const& camera);

    /// Whether it is a switch, or a menu, of something that the camera does by itself.
    bool isAutomatic(Control const& control) const;

private:
    std::set<std::string> m_automatics; ///< By what the camera has them for, whatever their names.
};

} // namespace ImageAcquisition::Session
