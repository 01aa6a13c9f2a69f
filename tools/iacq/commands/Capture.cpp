// SPDX-License-Identifier: MIT
#include "../CameraSelection.h"
#include "../CaptureStream.h"
#include "../CurrentSelection.h"
#include "../Failure.h"
#include "../FrameEncoder.h"
#include "../FrameSink.h"
#include "../FrameWorker.h"
#include "../Progress.h"
#include "../Selection.h"
#include "../TerminalText.h"
#include "Commands.h"

#include <IDevice.h>
#include <IFrame.h>

#include <string>

namespace Iacq
{

namespace
{

using namespace ImageAcquisition;

/// Some seconds of most cameras, and less than any machine has to spare.
constexpr std::size_t mostBytesWaiting = std::size_t(128) << 20;

/// What every frame of the stream has in common.
Session::PictureLayout layoutOf(ICamera const& camera)
{
    CurrentSelection const current = currentSelection(camera);
    int const bytesPerLine = current.size->isInvalid() ? 0 : current.size->bytesPerLine();
    return {current.format->name(), current.size->width(), current.size->height(),
            static_cast<unsigned int>(bytesPerLine < 0 ? 0 : bytesPerLine)};
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

/// Captures on this thread, while another does the work on what was captured.
void record(IBlockingCamera& camera, CaptureOptions const& options, FrameWorker::Work const& work,
            LossCount& losses)
{
    FrameWorker worker(mostBytesWaiting, work);
    try {
        CaptureStream stream(camera, options.buffers, losses);
        for (int taken = 0; taken < options.count;) {
            stream.nextFrame([&](IFrame const& frame) {
                if (worker.take(frame.bytePtr(), frame.bytesUsed())) {
                    ++taken;
                } else {
                    losses.dropped();
                }
            });
        }
    } catch (...) {
        // What was captured before is kept; if that fails, it is the earlier failure.
        worker.finish();
        throw;
    }
    Progress const progress("writing the last frames");
    worker.finish();
}

void tellLosses(LossCount const& losses)
{
    if (!losses.text().empty()) {
        tell(losses.text());
    }
}

} // namespace

void capture(CaptureOptions const& options)
{
    OutputFormat const format = outputFormatOf(options.outputFormat, options.output);
    // Finds fault with the name before the camera is kept busy.
    FrameSink sink(options.output, options.count);
    auto const opened = openCamera(options.camera);
    ImageAcquisition::IBlockingCamera& camera = opened.interface();
    demandFormats(camera);
    selectFor(options, camera);
    FrameEncoder encoder(layoutOf(camera), format);
    sink.open();
    LossCount losses;
    try {
        record(
            camera, options,
            [&](int number, std::vector<unsigned char> const& bytes) {
                sink.write(number, encoder.encode(bytes));
            },
            losses);
        sink.close();
    } catch (...) {
        tellLosses(losses);
        throw;
    }
    tellLosses(losses);
}

} // namespace Iacq
