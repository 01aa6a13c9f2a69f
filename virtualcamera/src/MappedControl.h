// SPDX-License-Identifier: MIT
#pragma once

#include "ControlNode.h"
#include "ExtensionUnitScript.h"
#include "InstalledCamera.h"

namespace VirtualCamera
{

/// A control that UVCIOC_CTRL_MAP laid over some bits of an extension unit's control.
class MappedControl : public ControlNode
{
public:
    MappedControl(ControlMapping mapping, SelectorScript& selector);

    std::uint32_t id() const override { return m_mapping.mapping.id; }
    std::uint32_t type() const override { return m_mapping.mapping.v4l2_type; }
    std::string const& name() const override { return m_name; }
    std::uint32_t flags() const override;
    ControlRange range() const override;
    int menuItem(v4l2_querymenu& item) const override;

    int read(std::int64_t& value) const override;
    int validate(std::int64_t& value) const override;
    int write(std::int64_t value) override;
    void force(std::int64_t value) override;

private:
    std::int64_t extract(std::vector<std::uint8_t> const& bytes) const;
    std::int64_t positionOf(std::int64_t menuValue) const;

    ControlMapping m_mapping;
    SelectorScript& m_selector;
    std::string m_name;
};

} // namespace VirtualCamera
