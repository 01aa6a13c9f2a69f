// SPDX-License-Identifier: MIT
#pragma once

#include "V4l2Ctl.h"
#include "VividCamera.h"

#include <ICameraControl.h>

#include <gtest/gtest.h>

namespace KernelTest
{

/// A camera with all controls as the driver sets them at first, brought back at the end.
class VividControls : public testing::Test
{
protected:
    using Control = ImageAcquisition::ICameraControl;

    template <typename Interface>
    Interface& control(char const* name) const
    {
        auto* const typed = dynamic_cast<Interface*>(m_camera->control(name));
        if (typed == nullptr) {
            throw std::runtime_error(std::string("no control of this type: ") + name);
        }
        return *typed;
    }

    /// The controls with this interface that can be written now.
    template <typename Interface>
    std::vector<Interface*> writable() const
    {
        std::vector<Interface*> found;
        for (int i = 0; i < m_camera->controlNumber(); ++i) {
            auto* const typed = dynamic_cast<Interface*>(m_camera->control(i));
            if (typed != nullptr && !typed->isReadOnly() && !typed->isInactive()) {
                found.push_back(typed);
            }
        }
        return found;
    }

    /// Writes with `write` here and expects v4l2-ctl to print the text it returns, for each
    /// control.
    template <typename Interface, typename Write>
    void expectWrittenHere(std::vector<Interface*> const& controls, Write write) const
    {
        std::map<unsigned, std::string> wanted;
        for (Interface* const one : controls) {
            wanted[one->id()] = write(*one);
        }
        std::map<unsigned, std::string> const printed = readControls(firstNode);
        for (Interface* const one : controls) {
            EXPECT_EQ(printed.at(one->id()), wanted[one->id()]) << one->name();
        }
    }

    /// Has v4l2-ctl set what `choose` returns, for each control, all at once.
    template <typename Interface, typename Choose>
    void setThere(std::vector<Interface*> const& controls, Choose choose) const
    {
        std::string settings;
        for (Interface* const one : controls) {
            settings += (settings.empty() ? "" : ",") + shortName(one->name()) + "=" +
                        std::to_string(choose(*one));
        }
        v4l2Ctl(firstNode, "--set-ctrl=" + settings);
    }

    ControlKeeper m_keeper{firstNode};
    CameraPointer m_camera = openCamera();
};

} // namespace KernelTest
