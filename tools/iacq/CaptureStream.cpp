// SPDX-License-Identifier: MIT
#include "CaptureStream.h"

#include "TerminalText.h"

#include <IDevice.h>
#include <IFrame.h>

#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

namespace Iacq
{

namespace
{

using namespace ImageAcquisition;

constexpr int corruptedFramesAllowed = 10;

/// A frame that is given back when it goes.
class BorrowedFrame
{
public:
    explicit BorrowedFrame(IBlockingCamera& camera)
        : m_camera(camera), m_frame(camera.acquireFrame())
    {
    }
    ~BorrowedFrame() { m_camera.releaseFrame(m_frame); }
    BorrowedFrame(BorrowedFrame const&) = delete;
    BorrowedFrame& operator=(BorrowedFrame const&) = delete;

    IFrame const& operator*() const { return *m_frame; }
    IFrame const* operator->() const { return m_frame; }

private:
    IBlockingCamera& m_camera;
    IFrame* m_frame;
};

constexpr char gone[] = "the camera is gone";

/// Whether the camera's node is taken away. The driver lets go of a stream a moment before.
bool losesItsNode(IBlockingCamera const& camera)
{
    using Clock = std::chrono::steady_clock;
    std::string const node = camera.device()->systemName();
    auto const end = Clock::now() + std::chrono::milliseconds(500);
    while (::access(node.c_str(), F_OK) == 0) {
        if (Clock::now() >= end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

/// The library passes no reason on, but errno is still the driver's when it refused.
[[noreturn]] void failStarting(IBlockingCamera& camera, std::string const& what, int error)
{
    camera.cleanup();
    if (error == ENODEV) {
        throw Failure(CameraFailed, gone);
    }
    failWithCamera(camera, CameraFailed,
                   error == EBUSY ? what + "; is it in use by another program?" : what);
}

void demandBytes(IFrame const& frame)
{
    if (frame.bytesUsed() > frame.allocSize()) {
        throw Failure(NoFrame, "the driver claims more bytes than the frame has");
    }
    if (frame.bytesUsed() == 0) {
        throw Failure(NoFrame, "the frame is empty");
    }
}

} // namespace

CaptureStream::CaptureStream(IBlockingCamera& camera, int buffers, LossCount& losses)
    : m_camera(camera), m_losses(losses)
{
    errno = 0;
    if (camera.setup(buffers) != 0) {
        failStarting(camera, "the camera grants no buffers", errno);
    }
    errno = 0;
    if (camera.startCapture() != 0) {
        failStarting(camera, "the camera does not start streaming", errno);
    }
    m_streaming = true;
}

CaptureStream::~CaptureStream()
{
    stop();
    m_camera.cleanup();
}

int CaptureStream::stop()
{
    if (!m_streaming) {
        return 0;
    }
    m_streaming = false;
    errno = 0;
    return m_camera.stopCapture() == 0 ? 0 : errno;
}

void CaptureStream::failWithoutFrame()
{
    // Some systems, such as containers, keep the node of a device that is gone; but then the driver
    // has no stream left to stop.
    if (stop() == ENODEV) {
        throw Failure(NoFrame, gone);
    }
    failWithCamera(m_camera, NoFrame, "the camera delivered no frame");
}

void CaptureStream::nextFrame(std::function<void(IFrame const&)> const& use)
{
    for (int attempt = 0; attempt <= corruptedFramesAllowed; ++attempt) {
        BorrowedFrame const frame(m_camera);
        if (frame->isInvalid()) {
            failWithoutFrame();
        }
        m_losses.came(frame->counter());
        if (!frame->isCorrupted()) {
            demandBytes(*frame);
            use(*frame);
            return;
        }
        tell("frame " + std::to_string(frame->counter()) + " is corrupted, taking the next");
    }
    throw Failure(NoFrame, "the camera delivers corrupted frames only");
}

void failWithCamera(IBlockingCamera const& camera, ExitStatus status, std::string const& message)
{
    throw Failure(status, losesItsNode(camera) ? gone : message);
}

} // namespace Iacq
