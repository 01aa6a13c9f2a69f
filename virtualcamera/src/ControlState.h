// SPDX-License-Identifier: MIT
#pragma once

#include "CameraScript.h"
#include "ScriptedControl.h"

#include <memory>

namespace VirtualCamera
{

/// The controls of one device and the ioctls on them. Results are 0 or a negative errno.
class ControlState
{
public:
    explicit ControlState(CameraScript const& script);

    void add(std::unique_ptr<ControlNode> control);

    int query(v4l2_queryctrl& answer) const;
    int queryExtended(v4l2_query_ext_ctrl& answer) const;
    int queryMenu(v4l2_querymenu& item) const;
    int get(v4l2_control& control) const;
    int set(v4l2_control& control);
    int getExtended(v4l2_ext_controls& controls) const;
    /// VIDIOC_S_EXT_CTRLS, or VIDIOC_TRY_EXT_CTRLS when not `stored`.
    int setExtended(v4l2_ext_controls& controls, bool stored);

    /// All throw `std::out_of_range` for an id that the device doesn't have.
    ControlNode& at(std::uint32_t id) const;
    ScriptedControl& scriptedAt(std::uint32_t id) const;
    std::uint32_t flagsOf(ControlNode const& control) const;

private:
    ControlNode* find(std::uint32_t id) const;
    int select(std::uint32_t requested, ControlNode*& found) const;
    ControlNode* following(std::uint32_t id) const;
    /// Finds the control that a query asks for, and answers what both kinds of query have.
    template <typename Answer>
    int describe(Answer& answer, ControlNode*& found) const;
    /// Finds a control for VIDIOC_G_CTRL or VIDIOC_S_CTRL, unless the check refuses it.
    int findPlain(std::uint32_t id, int (ControlState::*check)(ControlNode const&) const,
                  ControlNode*& found) const;
    bool hiddenFromPlainCalls(std::uint32_t id) const;
    int checkReadable(ControlNode const& control) const;
    int checkWritable(ControlNode const& control) const;
    int checkClass(v4l2_ext_controls& controls) const;
    int checkTransfer(v4l2_ext_control& transfer) const;
    int getOne(v4l2_ext_control& transfer, bool defaults) const;
    int validateOne(v4l2_ext_control& transfer) const;
    int storeOne(v4l2_ext_control const& transfer);

    CameraScript const& m_script;
    std::vector<std::unique_ptr<ControlNode>> m_controls; ///< In ascending order of their ids.
};

} // namespace VirtualCamera
