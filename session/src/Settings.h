// SPDX-License-Identifier: MIT
#pragma once

#include "OpenCamera.h"

#include "session/Control.h"
#include "session/Selection.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ImageAcquisition::Session
{

/// A camera's selection and controls as they are when this is made, and as they are set afterwards,
/// to be put back when the camera was opened anew.
class Settings
{
public:
    explicit Settings(std::shared_ptr<OpenCamera> camera);

    /// Controls that refuse are left as they are.
    /// @throws Error when the selection cannot be had.
    void putBack() const;

private:
    using Values = std::vector<std::pair<std::string, ControlValue>>;

    Values present() const;

    std::shared_ptr<OpenCamera> m_camera;
    Selection m_selection;
    Values m_controls;
};

} // namespace ImageAcquisition::Session
