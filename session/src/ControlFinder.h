// SPDX-License-Identifier: MIT
#pragma once

#include "OpenCamera.h"

#include "session/Control.h"

#include <memory>
#include <string>
#include <vector>

namespace ImageAcquisition
{
class ICamera;
}

namespace ImageAcquisition::Session
{

/// Makes the handles on a camera's controls.
class ControlFinder
{
public:
    explicit ControlFinder(std::shared_ptr<OpenCamera> camera) : m_camera(std::move(camera)) {}

    std::vector<Control> all() const;
    /// @throws Error NotFound or Ambiguous.
    Control named(std::string const& name) const;

private:
    Control handle(std::shared_ptr<Connection> const& connection, ICameraControl& control) const;

    std::shared_ptr<OpenCamera> m_camera;
};

/// The control of this name, short name or purpose; null when there is none.
/// @throws Error (Ambiguous) when a short form fits several.
ICameraControl* lookUpControl(ICamera const& camera, std::string const& name);

} // namespace ImageAcquisition::Session
