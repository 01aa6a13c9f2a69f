// SPDX-License-Identifier: MIT
#include "SeenCamera.h"

#include "LibraryCamera.h"
#include "Shell.h"

#include <ICameraControl.h>

#include <linux/videodev2.h>

#include <filesystem>

using namespace ImageAcquisition;

namespace KernelTest
{

namespace
{

/// The controls that the extension unit was mapped to.
int countPrivateControls(IBlockingCamera const& camera)
{
    int count = 0;
    for (int i = 0; i < camera.controlNumber(); ++i) {
        unsigned const id = camera.control(i)->id();
        count += id >= V4L2_CID_PRIVATE_BASE && id < V4L2_CID_PRIVATE_BASE + 29 ? 1 : 0;
    }
    return count;
}

} // namespace

nlohmann::json describeCamera(std::string const& node)
{
    ListPointer const list = listDevices();
    IDevice const* const record = recordOf(*list, node);
    if (record == nullptr) {
        return {{"listed", list->size()}};
    }
    CameraPointer const camera = openListed(node);
    if (camera == nullptr) {
        return {{"listed", list->size()}, {"opened", false}};
    }
    std::filesystem::path const device = std::filesystem::canonical(
        "/sys/class/video4linux/" + node.substr(node.rfind('/') + 1) + "/device/..");
    nlohmann::json seen{{"listed", list->size()},
                        {"opened", true},
                        {"firmware", record->firmwareVersion()},
                        {"vendorsOwn", record->isaZorvaneDevice()},
                        {"serial", record->serial()},
                        {"controls", camera->controlNumber()},
                        {"privateControls", countPrivateControls(*camera)},
                        {"formats", camera->formatNumber()},
                        {"reset", camera->softwareReset()}};
    if (seen["reset"]) {
        // The camera must not be closed while the driver gives the device up.
        waitFor([&device] { return !std::filesystem::exists(device); });
    }
    return seen;
}

} // namespace KernelTest
