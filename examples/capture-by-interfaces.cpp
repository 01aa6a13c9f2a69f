// SPDX-License-Identifier: MIT
// Captures ten frames from the first camera and writes the last one, as the driver delivers it:
//   capture-by-interfaces FILE
// On the bare interfaces; capture-frames does it on the session layer.
#include <IBlockingCamera.h>
#include <ICameraFactory.h>
#include <IDeviceList.h>
#include <IFrame.h>
#include <IFrameSize.h>
#include <IImageFormat.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <memory>

using namespace ImageAcquisition;

namespace
{

int fail(char const* what)
{
    std::cerr << "capture-by-interfaces: " << what << "\n";
    return 1;
}

// Waits for a frame, and writes it when a file is given. A frame is borrowed: whatever happens,
// it goes back, or the driver runs out of buffers.
bool takeFrame(IBlockingCamera& camera, std::ostream* file)
{
    IFrame* const frame = camera.acquireFrame();
    bool const good = !frame->isInvalid() && !frame->isCorrupted();
    if (good) {
        std::cout << "frame " << frame->counter() << ": " << frame->bytesUsed() << " bytes at "
                  << frame->timeStamp().seconds << " s\n";
    }
    // What is used is the driver's word, and a broken driver may claim more than there is to read.
    if (good && file != nullptr) {
        file->write(reinterpret_cast<char const*>(frame->bytePtr()),
                    std::min(frame->bytesUsed(), frame->allocSize()));
    }
    camera.releaseFrame(frame);
    return good;
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 2) {
        return fail("usage: capture-by-interfaces FILE");
    }
    ICameraFactory& factory = ICameraFactory::getUniqueInstance();
    std::unique_ptr<IDeviceList> const list(factory.createDeviceList());
    std::unique_ptr<IBlockingCamera> const camera(factory.createBlockingCamera(list->at(0)));
    if (!camera) {
        return fail("no camera that can be opened");
    }

    // The first format, its first size and that size's first interval; then the buffers for them.
    if (!camera->setCurrentImageFormat(0, 0, 0)) {
        return fail("the camera refused its first format");
    }
    IImageFormat const* const format = camera->currentImageFormat();
    IFrameSize const* const size = camera->currentFrameSize();
    std::cout << format->name() << ", " << size->width() << "x" << size->height() << "\n";

    std::ofstream file(arguments[1], std::ios::binary);
    bool good = camera->setup(4) == 0 && camera->startCapture() == 0;
    for (int number = 1; good && number <= 10; ++number) {
        good = takeFrame(*camera, number == 10 ? &file : nullptr);
    }
    camera->stopCapture();
    camera->cleanup();
    return good && file.flush() ? 0 : fail("no picture");
}
