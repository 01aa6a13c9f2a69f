// SPDX-License-Identifier: MIT
#include "../CameraSelection.h"
#include "../CaptureStream.h"
#include "../CurrentSelection.h"
#include "../Failure.h"
#include "../FrameSink.h"
#include "../ImageEncoding.h"
#include "../Selection.h"
#include "Commands.h"

#include <IDevice.h>
#include <IFrame.h>

namespace Iacq
{

namespace
{

using namespace ImageAcquisition;

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

void demandFormats(IBlockingCamera const& camera)
{
    if (camera.formatNumber() == 0) {
        failWithCamera(camera, CameraFailed,
                       std::string(camera.device()->systemName()) +
                           " cannot be opened or offers no format");
    }
}

void selectFor(CaptureOptions const& options, IBlockingCamera& camera)
{
    try {
        select(camera, {options.format, options.size, options.interval, options.frameRate});
    } catch (Failure const& failure) {
        if (failure.status() == CameraFailed) {
            failWithCamera(camera, CameraFailed, failure.what());
        }
        throw;
    }
}

} // namespace

void capture(CaptureOptions const& options)
{
    OutputFormat const format = outputFormatOf(options.outputFormat, options.output);
    // Finds fault with the name before the camera is kept busy.
    FrameSink sink(options.output, options.count);
    CameraPtr const camera = openCamera(options.camera);
    demandFormats(*camera);
    selectFor(options, *camera);
    FrameView const common = viewOf(*camera);
    if (format != OutputFormat::Raw && !canConvert(common.format)) {
        throw Failure(BadUsage,
                      "cannot convert " + common.format + " to a picture; use --output-format raw");
    }
    sink.open();
    CaptureStream stream(*camera, options.buffers);
    for (int number = 1; number <= options.count; ++number) {
        stream.nextFrame([&](IFrame const& frame) {
            FrameView view = common;
            view.data = frame.bytePtr();
            view.size = frame.bytesUsed();
            sink.write(number, encode(view, format));
        });
    }
    sink.close();
}

} // namespace Iacq
