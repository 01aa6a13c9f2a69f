// SPDX-License-Identifier: MIT
#include "LibraryCamera.h"

#include "WholeFile.h"

#include <ICameraFactory.h>

#include <stdexcept>

using namespace ImageAcquisition;

namespace KernelTest
{

ListPointer listDevices()
{
    return ListPointer(ICameraFactory::getUniqueInstance().createDeviceList());
}

IDevice const* recordOf(IDeviceList const& list, std::string const& node)
{
    for (int i = 0; i < list.size(); ++i) {
        if (list.at(i)->systemName() == node) {
            return list.at(i);
        }
    }
    return nullptr;
}

CameraPointer openListed(std::string const& node)
{
    ListPointer const list = listDevices();
    IDevice const* const record = recordOf(*list, node);
    return CameraPointer(record ? ICameraFactory::getUniqueInstance().createBlockingCamera(record)
                                : nullptr);
}

Bytes bytesOf(IFrame const& frame)
{
    return Bytes(frame.bytePtr(), frame.bytePtr() + frame.bytesUsed());
}

Bytes fileBytes(std::string const& name)
{
    std::string const content = wholeFile(name);
    return Bytes(content.begin(), content.end());
}

double stampSeconds(IFrame const& frame)
{
    FrameTimeStamp const stamp = frame.timeStamp();
    return static_cast<double>(stamp.seconds) + static_cast<double>(stamp.microseconds) / 1e6;
}

Stream::Stream(IBlockingCamera& camera, int bufferCount) : m_camera(camera)
{
    if (m_camera.setup(bufferCount) != 0 || m_camera.startCapture() != 0) {
        m_camera.cleanup();
        throw std::runtime_error("the capture does not start");
    }
}

Stream::~Stream()
{
    m_camera.stopCapture();
    m_camera.cleanup();
}

std::vector<IFrame*> Stream::takeAll() const
{
    std::vector<IFrame*> frames;
    for (IFrame* frame; !(frame = m_camera.acquireFrame())->isInvalid();) {
        frames.push_back(frame);
    }
    return frames;
}

} // namespace KernelTest
