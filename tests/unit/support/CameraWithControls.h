// SPDX-License-Identifier: MIT
#pragma once

#include "DeviceStub.h"
#include "VirtualCamera.h"
#include "camera/Camera.h"

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

/// The library's camera on a virtual one whose controls a test scripts. Opening it is not logged.
class CameraWithControls
{
public:
    enum class Maker { Other, Vendor };

    explicit CameraWithControls(VirtualCamera::CameraBuilder const& builder,
                                Maker maker = Maker::Other)
        : node(builder.install()), camera(recordOf(builder.script().node, maker).get())
    {
        if (!camera.init()) {
            throw std::runtime_error("the camera could not be initialised");
        }
        node.clearLog();
    }
    explicit CameraWithControls(std::vector<VirtualCamera::ControlScript> const& controls)
        : CameraWithControls(builderOf(controls))
    {
    }

    ImageAcquisition::ICameraControl& control(unsigned int id) const
    {
        return *camera.controlById(id);
    }

    /// The control as one of a typed interface; throws `std::bad_cast` when it is of another type.
    template <typename Interface>
    Interface& as(unsigned int id) const
    {
        return dynamic_cast<Interface&>(control(id));
    }

    /// The only call since the log was cleared; throws unless there was exactly one.
    VirtualCamera::CallRecord onlyCall() const
    {
        std::vector<VirtualCamera::CallRecord> const calls = node.calls();
        if (calls.size() != 1) {
            throw std::runtime_error("not one call but " + std::to_string(calls.size()));
        }
        return calls.front();
    }

    static VirtualCamera::CameraBuilder
    builderOf(std::vector<VirtualCamera::ControlScript> const& controls)
    {
        VirtualCamera::CameraBuilder builder = VirtualCamera::aCamera();
        for (VirtualCamera::ControlScript const& control : controls) {
            builder.withControl(control);
        }
        return builder;
    }

    // The virtual camera outlives the one that has it open.
    VirtualCamera::InstalledCamera node;
    ImageAcquisition::Camera camera;

private:
    static std::unique_ptr<DeviceStub> recordOf(std::string const& node, Maker maker)
    {
        auto record = std::make_unique<DeviceStub>();
        record->node = node.c_str();
        if (maker == Maker::Vendor) {
            record->vendor = IMAGEACQUISITION_VENDOR_ID;
            record->product = IMAGEACQUISITION_PRODUCT_ID;
        }
        return record;
    }
};
