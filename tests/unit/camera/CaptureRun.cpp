// SPDX-License-Identifier: MIT
#include "CaptureRun.h"

#include "DescriptorLimit.h"
#include "DeviceStub.h"
#include "ICameraFactory.h"
#include "IFrame.h"
#include "IFramePeriod.h"
#include "IFrameSize.h"
#include "IImageFormat.h"

#include <memory>
#include <optional>
#include <stdexcept>
#include <tuple>

using namespace ImageAcquisition;

char const* nameOf(Step step)
{
    static char const* const names[] = {"open",    "select",  "inspect", "setup",   "start",
                                        "acquire", "release", "stop",    "cleanup", "close"};
    return names[static_cast<int>(step)];
}

CaptureRun::CaptureRun(VirtualCamera::InstalledCamera& virtualCamera, InputMethod::Type method)
    : m_virtual(virtualCamera)
{
    DeviceStub const device{};
    std::unique_ptr<IBlockingCamera> camera(
        ICameraFactory::getUniqueInstance().createBlockingCamera(&device));
    mark(Step::Open);
    opened = camera != nullptr;
    if (!opened) {
        return;
    }
    open(*camera);
    selected = camera->setCurrentImageFormat(0, 1, 0);
    mark(Step::Select);
    inspect(*camera);
    mark(Step::Inspect);
    {
        std::optional<DescriptorLimit> none;
        if (method != InputMethod::MemoryMapping) {
            none.emplace();
        }
        setup = camera->setup(2);
    }
    mark(Step::Setup);
    capture(*camera);
    camera.reset();
    mark(Step::Close);
}

void CaptureRun::open(IBlockingCamera const& camera)
{
    formats = camera.formatNumber();
    controls = camera.controlNumber();
    sizes = periods = 0;
    for (int i = 0; i < formats; ++i) {
        sizes += camera.format(i)->sizeNumber();
        for (int j = 0; j < camera.format(i)->sizeNumber(); ++j) {
            periods += camera.format(i)->frameSize(j)->periodNumber();
        }
    }
}

void CaptureRun::inspect(IBlockingCamera const& camera)
{
    try {
        formatKnown = !camera.currentImageFormat()->isInvalid();
        sizeKnown = !camera.currentFrameSize()->isInvalid();
        periodKnown = !camera.currentFrameInterval()->isInvalid();
    } catch (std::out_of_range const&) {
        formatAbsent = true;
    }
}

void CaptureRun::capture(IBlockingCamera& camera)
{
    start = camera.startCapture();
    mark(Step::Start);
    for (std::size_t i = 0; i < frames; ++i) {
        IFrame* const frame = camera.acquireFrame();
        mark(Step::Acquire);
        delivered[i] = !frame->isInvalid();
        released[i] = camera.releaseFrame(frame);
        mark(Step::Release);
    }
    stop = camera.stopCapture();
    mark(Step::Stop);
    cleanup = camera.cleanup();
    mark(Step::Cleanup);
}

Step CaptureRun::stepOf(std::size_t position) const
{
    for (auto const& [step, end] : marks) {
        if (position < end) {
            return step;
        }
    }
    throw std::out_of_range("the call was made by no step");
}

bool CaptureRun::operator==(CaptureRun const& other) const
{
    auto const answers = [](CaptureRun const& run) {
        return std::tie(run.opened, run.formats, run.sizes, run.periods, run.controls, run.selected,
                        run.formatKnown, run.sizeKnown, run.periodKnown, run.formatAbsent,
                        run.setup, run.start, run.delivered, run.released, run.stop, run.cleanup);
    };
    return answers(*this) == answers(other);
}
