// SPDX-License-Identifier: MIT
#include "VividCamera.h"

#include "DeviceStub.h"
#include "V4l2Ctl.h"

#include <ICameraFactory.h>

using namespace ImageAcquisition;

namespace KernelTest
{

CameraPointer openCamera(std::string const& node)
{
    DeviceStub record;
    record.card = "vivid";
    record.driver = "vivid";
    record.node = node.c_str();
    record.vendor = "";
    record.product = "";
    return CameraPointer(ICameraFactory::getUniqueInstance().createBlockingCamera(&record));
}

void showStillPicture(std::string const& node)
{
    v4l2Ctl(node, "--set-ctrl=test_pattern=0,osd_text_mode=2,horizontal_movement=3,"
                  "vertical_movement=3,show_border=0,show_square=0,timestamp_source=1");
}

bool selectSmall(IBlockingCamera& camera, char const* format)
{
    return camera.setCurrentImageFormat(format, 320, 180, 1, 25);
}

Bytes capturedByV4l2Ctl(std::string const& node, unsigned count)
{
    std::string const file = "/tmp/vivid-frames";
    v4l2Ctl(node, "--stream-mmap --stream-count=" + std::to_string(count) + " --stream-to=" + file);
    return fileBytes(file);
}

} // namespace KernelTest
