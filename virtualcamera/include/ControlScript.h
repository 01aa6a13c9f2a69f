// SPDX-License-Identifier: MIT
#pragma once

#include "VirtualCameraExport.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace VirtualCamera
{

/// One item of a menu; `index` is the driver's, so that missing indices make holes.
struct MenuItem
{
    std::uint32_t index = 0;
    std::string label;
    std::int64_t value = 0; ///< For integer menus.
};

/// One control as a driver offers it. Made by the functions below and refined by its own members:
/// `integerControl(V4L2_CID_BRIGHTNESS, "Brightness").range(0, 255).byDefault(128)`.
struct VIRTUALCAMERA_EXPORT ControlScript
{
    ControlScript(std::uint32_t controlType, std::uint32_t controlId, std::string controlName);

    /// Range and step of numbers, length bounds of strings, mask (as `highest`) of bit masks.
    ControlScript& range(std::int64_t lowest, std::int64_t highest, std::int64_t stepWidth = 1);
    /// Default value, and the current one unless `currently` gives another. For menus an index.
    ControlScript& byDefault(std::int64_t value);
    ControlScript& currently(std::int64_t value);
    ControlScript& currently(std::string text);
    /// Adds an item to a menu at the next free index, or at a given one; widens the range to it.
    ControlScript& withItem(std::string label);
    ControlScript& withItem(std::uint32_t index, std::string label);
    ControlScript& withItem(std::uint32_t index, std::int64_t value);
    /// V4L2_CTRL_FLAG_..., added to those that the type brings along.
    ControlScript& withFlags(std::uint32_t flagBits);
    ControlScript& readOnly();
    /// Shows the control as inactive, and refuses writes, while control `masterId` differs from
    /// `value` (an exposure time that only counts in manual mode).
    ControlScript& activeOnlyWhen(std::uint32_t masterId, std::int64_t value);
    /// Every read or write of this control alone fails so.
    ControlScript& refusingReads(int error);
    ControlScript& refusingWrites(int error);
    /// Makes VIDIOC_QUERYCTRL report range and default, which kernels show as 0 for 64-bit
    /// integers; all other types show theirs anyway.
    ControlScript& showingRange(bool shown = true);
    /// A read with too small a buffer names the size that the present text needs, not (as
    /// kernels do) the size that the longest text would need.
    ControlScript& namingExactSize(bool exact = true);

    std::uint32_t type;
    std::uint32_t id;
    std::string name;
    std::uint32_t flags = 0;
    std::int64_t minimum = 0;
    std::int64_t maximum = 0;
    std::int64_t step = 1;
    std::int64_t defaultValue = 0;
    std::optional<std::int64_t> value; ///< The current value; the default when absent.
    std::string text;                  ///< The current text of a string control.
    std::vector<MenuItem> items;
    std::uint32_t masterId = 0; ///< 0: no master.
    std::int64_t masterValue = 0;
    int readError = 0;
    int writeError = 0;
    bool rangeShown;
    bool exactSizeNamed = false;
};

VIRTUALCAMERA_EXPORT ControlScript integerControl(std::uint32_t id, std::string name);
VIRTUALCAMERA_EXPORT ControlScript booleanControl(std::uint32_t id, std::string name);
VIRTUALCAMERA_EXPORT ControlScript menuControl(std::uint32_t id, std::string name);
VIRTUALCAMERA_EXPORT ControlScript integerMenuControl(std::uint32_t id, std::string name);
VIRTUALCAMERA_EXPORT ControlScript buttonControl(std::uint32_t id, std::string name);
VIRTUALCAMERA_EXPORT ControlScript integer64Control(std::uint32_t id, std::string name);
VIRTUALCAMERA_EXPORT ControlScript stringControl(std::uint32_t id, std::string name);
VIRTUALCAMERA_EXPORT ControlScript bitMaskControl(std::uint32_t id, std::string name);
VIRTUALCAMERA_EXPORT ControlScript unsigned8Control(std::uint32_t id, std::string name);
VIRTUALCAMERA_EXPORT ControlScript unsigned16Control(std::uint32_t id, std::string name);
VIRTUALCAMERA_EXPORT ControlScript unsigned32Control(std::uint32_t id, std::string name);
VIRTUALCAMERA_EXPORT ControlScript classHeading(std::uint32_t id, std::string name);

} // namespace VirtualCamera
