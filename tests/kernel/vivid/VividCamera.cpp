// SPDX-License-Identifier: MIT
#include "VividCamera.h"

#include "DeviceStub.h"
#include "V4l2Ctl.h"

#include <ICameraFactory.h>

#include <ctime>
#include <fstream>
#include <iterator>
#include <stdexcept>

using namespace ImageAcquisition;

namespace KernelTest
{

CameraPointer openCamera(const std::string& node)
{
    DeviceStub record;
    record.card = "vivid";
    record.driver = "vivid";
    record.node = node.c_str();
    record.vendor = "";
    record.product = "";
    return CameraPointer(ICameraFactory::getUniqueInstance().createBlockingCamera(&record));
}

void showStillPicture(const std::string& node)
{
    v4l2Ctl(node, "--set-ctrl=test_pattern=0,osd_text_mode=2,horizontal_movement=3,"
                  "vertical_movement=3,show_border=0,show_square=0,timestamp_source=1");
}

bool selectSmall(IBlockingCamera& camera, const char* format)
{
    return camera.setCurrentImageFormat(format, 320, 180, 1, 25);
}

Bytes bytesOf(const IFrame& frame)
{
    return Bytes(frame.bytePtr(), frame.bytePtr() + frame.bytesUsed());
}

Bytes capturedByV4l2Ctl(const std::string& node, unsigned count)
{
    const std::string file = "/tmp/vivid-frames";
    v4l2Ctl(node, "--stream-mmap --stream-count=" + std::to_string(count) + " --stream-to=" + file);
    std::ifstream stream(file, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
}

double monotonicSeconds()
{
    timespec now{};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

double stampSeconds(const IFrame& frame)
{
    const FrameTimeStamp stamp = frame.timeStamp();
    return static_cast<double>(stamp.seconds) + static_cast<double>(stamp.microseconds) / 1e6;
}

Stream::Stream(IBlockingCamera& camera, int bufferCount) : _camera(camera)
{
    if (_camera.setup(bufferCount) != 0 || _camera.startCapture() != 0) {
        _camera.cleanup();
        throw std::runtime_error("the capture does not start");
    }
}

Stream::~Stream()
{
    _camera.stopCapture();
    _camera.cleanup();
}

std::vector<IFrame*> Stream::takeAll() const
{
    std::vector<IFrame*> frames;
    for (IFrame* frame; !(frame = _camera.acquireFrame())->isInvalid();) {
        frames.push_back(frame);
    }
    return frames;
}

} // namespace KernelTest
