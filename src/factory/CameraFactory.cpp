// SPDX-License-Identifier: MIT
#include "factory/CameraFactory.h"

#include "IDevice.h"
#include "camera/Camera.h"
#include "device/DeviceEnumerator.h"
#include "device/DeviceList.h"
#include "factory/FirmwareRevision.h"
#include "factory/SerialModule.h"
#include "monitor/BlockingCameraMonitor.h"
#include "monitor/CameraEvent.h"
#include "monitor/ContinuousCameraMonitor.h"

#include <memory>

namespace ImageAcquisition
{

namespace
{

std::unique_ptr<Camera> makeCamera(IDevice const* device)
{
    long long const firmware = firmwareRank(device->firmwareVersion());
    std::unique_ptr<Camera> camera;
    if (device->isaZorvaneDevice() && hasSerialControls(firmware)) {
        camera = makeSerialCamera(device);
    }
    // Its video works without the module too.
    return camera ? std::move(camera) : std::make_unique<Camera>(device);
}

} // namespace

ICameraFactory::~ICameraFactory() = default;

ICameraFactory& ICameraFactory::getUniqueInstance()
{
    return CameraFactory::getUniqueInstance();
}

CameraFactory& CameraFactory::getUniqueInstance()
{
    static CameraFactory factory;
    return factory;
}

IDevice* CameraFactory::createDevice(char const* nodeName) const
{
    return nodeName == nullptr ? nullptr : DeviceEnumerator::createDevice(nodeName);
}

IDeviceList* CameraFactory::createDeviceList() const
{
    auto list = std::make_unique<DeviceList>();
    DeviceEnumerator::fillDeviceList(list.get());
    return list.release();
}

IBlockingCamera* CameraFactory::createBlockingCamera(IDevice const* device) const
{
    if (device == nullptr) {
        return nullptr;
    }
    std::unique_ptr<Camera> camera = makeCamera(device);
    if (camera->init()) {
        return camera.release();
    }
    // A camera that could not be set up may be in a state that only a restart ends.
    camera->softwareReset();
    return nullptr;
}

ICameraEvent* CameraFactory::createEvent() const
{
    return new CameraEvent;
}

IBlockingCameraMonitor* CameraFactory::createBlockingCameraMonitor() const
{
    return new BlockingCameraMonitor;
}

IContinuousCameraMonitor* CameraFactory::createContinuousCameraMonitor() const
{
    return new ContinuousCameraMonitor;
}

} // namespace ImageAcquisition
