// SPDX-License-Identifier: MIT
#include "../CameraSelection.h"
#include "../CurrentSelection.h"
#include "../Failure.h"
#include "../ImageEncoding.h"
#include "../Output.h"
#include "../Selection.h"
#include "Commands.h"

#include <IFrame.h>

#include <cstdio>

namespace Iacq
{

namespace
{

using namespace ImageAcquisition;

constexpr int corruptedFramesAllowed = 10;

/// A stream that is stopped and cleaned up when it goes.
class Stream
{
public:
    Stream(IBlockingCamera& camera, int buffers) : m_camera(camera)
    {
        if (camera.setup(buffers) != 0) {
            camera.cleanup();
            throw Failure(CameraFailed,
                          "the camera grants no buffers; is it in use by another program?");
        }
        if (camera.startCapture() != 0) {
            camera.cleanup();
            throw Failure(CameraFailed, "the camera does not start streaming");
        }
    }
    ~Stream()
    {
        m_camera.stopCapture();
        m_camera.cleanup();
    }
    Stream(Stream const&) = delete;
    Stream& operator=(Stream const&) = delete;

private:
    IBlockingCamera& m_camera;
};

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

    IFrame const* operator->() const { return m_frame; }

private:
    IBlockingCamera& m_camera;
    IFrame* m_frame;
};

std::vector<unsigned char> encode(FrameView const& view, OutputFormat format)
{
    switch (format) {
    case OutputFormat::Png:
        return encodePng(toRgb(view));
    case OutputFormat::Ppm:
        return encodePpm(toRgb(view));
    case OutputFormat::Raw:
        break;
    }
    return std::vector<unsigned char>(view.data, view.data + view.size);
}

/// What every frame of the stream has in common; the frame's own bytes are filled in later.
FrameView viewOf(ICamera const& camera)
{
    CurrentSelection const current = currentSelection(camera);
    int const bytesPerLine = current.size->isInvalid() ? 0 : current.size->bytesPerLine();
    return {current.format->name(),
            current.size->width(),
            current.size->height(),
            static_cast<unsigned int>(bytesPerLine < 0 ? 0 : bytesPerLine),
            nullptr,
            0};
}

/// The next good frame, encoded.
std::vector<unsigned char> nextPicture(IBlockingCamera& camera, FrameView view, OutputFormat format)
{
    for (int attempt = 0; attempt <= corruptedFramesAllowed; ++attempt) {
        BorrowedFrame const frame(camera);
        if (frame->isInvalid()) {
            throw Failure(NoFrame, "the camera delivered no frame");
        }
        if (frame->isCorrupted()) {
            std::fprintf(stderr, "iacq: frame %llu is corrupted, taking the next\n",
                         frame->counter());
            continue;
        }
        if (frame->bytesUsed() > frame->allocSize()) {
            throw Failure(NoFrame, "the driver claims more bytes than the frame has");
        }
        if (frame->bytesUsed() == 0) {
            throw Failure(NoFrame, "the frame is empty");
        }
        view.data = frame->bytePtr();
        view.size = frame->bytesUsed();
        return encode(view, format);
    }
    throw Failure(NoFrame, "the camera delivers corrupted frames only");
}

} // namespace

void capture(CaptureOptions const& options)
{
    OutputFormat const format = outputFormatOf(options.outputFormat, options.output);
    // Finds fault with the name before the camera is kept busy.
    numberedPath(options.output, 1, options.count);
    CameraPtr const camera = openCamera(options.camera);
    if (camera->formatNumber() == 0) {
        throw Failure(CameraFailed, std::string(camera->device()->systemName()) +
                                        " cannot be opened or offers no format");
    }
    select(*camera, {options.format, options.size, options.interval, options.frameRate});
    FrameView const view = viewOf(*camera);
    if (format != OutputFormat::Raw && !canConvert(view.format)) {
        throw Failure(BadUsage,
                      "cannot convert " + view.format + " to a picture; use --output-format raw");
    }
    Stream const stream(*camera, options.buffers);
    for (int number = 1; number <= options.count; ++number) {
        writeFile(numberedPath(options.output, number, options.count),
                  nextPicture(*camera, view, format));
    }
}

} // namespace Iacq
