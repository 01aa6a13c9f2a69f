// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraFactory.h"

namespace ImageAcquisition
{

/// Chooses the concrete class of each public object and makes it.
class CameraFactory : public virtual ICameraFactory
{
public:
    static CameraFactory& getUniqueInstance();

    IDevice* createDevice(char const* nodeName) const override;
    IDeviceList* createDeviceList() const override;
    IBlockingCamera* createBlockingCamera(IDevice const* device) const override;
    ICameraEvent* createEvent() const override;
    IBlockingCameraMonitor* createBlockingCameraMonitor() const override;
    IContinuousCameraMonitor* createContinuousCameraMonitor() const override;
};

} // namespace ImageAcquisition
