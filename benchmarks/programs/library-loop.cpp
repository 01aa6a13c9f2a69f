// SPDX-License-Identifier: MIT
// The same capture through the library's public interface.
#include "DeviceStub.h"
#include "Run.h"

#include <ImageAcquisition.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace
{

using namespace ImageAcquisition;

void require(bool isDone, char const* what)
{
    if (!isDone) {
        std::fprintf(stderr, "library-loop: %s failed\n", what);
        std::exit(EXIT_FAILURE);
    }
}

void takeFrame(IBlockingCamera& camera)
{
    IFrame* const frame = camera.acquireFrame();
    require(!frame->isInvalid(), "acquireFrame");
    require(camera.releaseFrame(frame) == 0, "releaseFrame");
}

} // namespace

int main(int argc, char** argv)
{
    Run const run = parseRun(argc, argv);
    // Not out of a list: what that costs is measured by itself, and vivid is no USB device.
    DeviceStub record;
    record.node = run.node;
    std::unique_ptr<IBlockingCamera> camera(
        ICameraFactory::getUniqueInstance().createBlockingCamera(&record));
    require(camera != nullptr, "createBlockingCamera");
    require(camera->setup(static_cast<int>(run.buffers)) == 0, "setup");
    require(camera->startCapture() == 0, "startCapture");
    streamIsOn(run);
    for (unsigned int frame = 0; frame < run.frames; ++frame) {
        takeFrame(*camera);
        if (frame == 0) {
            announceFrame(run);
        }
    }
    framesAreThrough();
    require(camera->stopCapture() == 0, "stopCapture");
    camera->cleanup();
    camera.reset();
    report(run);
}
