// SPDX-License-Identifier: MIT
#pragma once

#include "ControlNode.h"
#include "ControlScript.h"

namespace VirtualCamera
{

/// A control that keeps its own value.
class ScriptedControl : public ControlNode
{
public:
    explicit ScriptedControl(ControlScript script);

    std::uint32_t id() const override { return m_script.id; }
    std::uint32_t type() const override { return m_script.type; }
    std::string const& name() const override { return m_script.name; }
    std::uint32_t flags() const override { return m_script.flags; }
    void setFlags(std::uint32_t flags) { m_script.flags = flags; }
    ControlRange range() const override;
    int menuItem(v4l2_querymenu& item) const override;
    ControlScript const& script() const { return m_script; }

    int read(std::int64_t& value) const override;
    int validate(std::int64_t& value) const override;
    int write(std::int64_t value) override;
    void force(std::int64_t value) override;

    std::string const& text() const { return m_script.text; }
    int validateText(std::string const& text) const;
    void setText(std::string text);

private:
    bool hasItem(std::int64_t index) const;

    ControlScript m_script;
    std::int64_t m_value;
};

} // namespace VirtualCamera
