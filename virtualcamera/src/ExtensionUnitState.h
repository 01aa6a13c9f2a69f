// SPDX-License-Identifier: MIT
#pragma once

#include "ControlNode.h"
#include "ExtensionUnitScript.h"
#include "InstalledCamera.h"

#include <memory>
#include <optional>
#include <vector>

namespace VirtualCamera
{

/// The bytes of a camera's extension unit and what has been mapped onto them.
class ExtensionUnitState
{
public:
    explicit ExtensionUnitState(std::optional<ExtensionUnitScript> const& script);

    /// Answers UVCIOC_CTRL_MAP; on success `added` is the new control.
    int map(uvc_xu_control_mapping const& mapping, std::unique_ptr<ControlNode>& added);

    std::vector<ControlMapping> const& mappings() const { return m_mappings; }
    SelectorScript& selector(std::uint8_t number);
    SelectorScript const& selector(std::uint8_t number) const;

private:
    int check(uvc_xu_control_mapping const& mapping) const;
    SelectorScript const* find(std::uint8_t number) const;

    std::optional<ExtensionUnitScript> m_script;
    std::vector<ControlMapping> m_mappings;
};

} // namespace VirtualCamera
