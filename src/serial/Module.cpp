// SPDX-License-Identifier: MIT
// The way into the module.
#include "serial/ZorvaneCamera.h"
#include "system/ModuleExport.h"

extern "C" IMAGEACQUISITION_MODULE_EXPORT ImageAcquisition::Camera*
imageAcquisitionMakeSerialCamera(ImageAcquisition::IDevice const* device)
{
    return new ImageAcquisition::ZorvaneCamera(device);
}
