// SPDX-License-Identifier: MIT
#include "../CameraSelection.h"
#include "../Failure.h"
#include "../FrameEncoder.h"
#include "../FrameSink.h"
#include "../FrameWorker.h"
#include "../Progress.h"
#include "../TerminalText.h"
#include "Commands.h"

#include <algorithm>
#include <chrono>
#include <string>

namespace Iacq
{

namespace
{

using namespace ImageAcquisition::Session;

/// Some seconds of most cameras, more than any driver has buffers for, and less than any machine
/// has to spare.
constexpr std::size_t mostBytesWaiting = std::size_t(128) << 20;

constexpr int corruptedFramesAllowed = 10;

/// For a frame. Some cameras begin late, and a busy machine hands large frames over late.
constexpr std::chrono::seconds patience{5};

/// What a text says that has a size and a rate, of which one is the user's.
Selection parsed(std::string const& text, std::string const& fault)
{
    try {
        Selection selection = Selection::parse(text);
        if (selection.format.empty() && selection.width != 0 && selection.rate.isSaid()) {
            return selection;
        }
    } catch (Error const&) {
        // The user wrote an option, not this text.
    }
    throw Failure(BadUsage, fault);
}

Selection wishOf(CaptureOptions const& options)
{
    Selection wish;
    wish.format = options.format;
    if (!options.size.empty()) {
        Selection const size =
            parsed(options.size + "@1", "'" + options.size + "' is no size; give it like 640x480");
        wish.width = size.width;
        wish.height = size.height;
    }
    if (!options.frameRate.empty()) {
        wish.rate =
            parsed("1x1@" + options.frameRate,
                   "'" + options.frameRate + "' is no number of frames a second; give it like 30")
                .rate;
    }
    if (!options.interval.empty()) {
        bool const isFraction = options.interval.find('/') != std::string::npos;
        FrameRate const inverse =
            parsed(isFraction ? "1x1@" + options.interval : "",
                   "'" + options.interval + "' is no interval; give it like 1/30")
                .rate;
        wish.rate = {inverse.seconds, inverse.frames};
    }
    return wish;
}

/// Sets what the user named; returns what is set then.
Selection select(Camera& camera, Selection const& wish)
{
    try {
        return camera.select(wish);
    } catch (Error const& error) {
        bool const isWrong = error.kind() == ErrorKind::Unsupported && wish != Selection();
        throw Failure(isWrong ? BadUsage : CameraFailed, error.what());
    }
}

/// What was lost between the first frame and the last.
struct Losses
{
    unsigned long long byDriver = 0;
    unsigned long long byStream = 0;
    unsigned long long byWriting = 0;
};

void tellLosses(Losses const& losses)
{
    unsigned long long const slow = losses.byStream + losses.byWriting;
    std::string text;
    if (losses.byDriver > 0) {
        text += std::to_string(losses.byDriver) + " by the driver";
    }
    if (slow > 0) {
        text += (text.empty() ? "" : ", ") + std::to_string(slow) + " by slow writing";
    }
    if (!text.empty()) {
        tell("frames lost: " + text);
    }
}

/// Whether a frame is to be kept, or passed over.
class Judge
{
public:
    bool isGood(Frame const& frame)
    {
        if (frame.isDamaged()) {
            tell("frame " + std::to_string(frame.number()) + " is corrupted, taking the next");
            if (++m_corrupted > corruptedFramesAllowed) {
                throw Failure(NoFrame, "the camera delivers corrupted frames only");
            }
            return false;
        }
        if (frame.bytes().empty()) {
            throw Failure(NoFrame, "the frame is empty");
        }
        m_corrupted = 0;
        return true;
    }

private:
    int m_corrupted = 0; ///< In a row.
};

void takeFrames(Stream& stream, int count, FrameWorker& worker, Losses& losses)
{
    Judge judge;
    int taken = 0;
    for (Frame const& frame : stream) {
        Statistics const statistics = stream.statistics();
        losses.byDriver = statistics.lost;
        losses.byStream = statistics.thrownAway;
        if (!judge.isGood(frame)) {
            continue;
        }
        if (!worker.take(frame.bytes(), layoutOf(frame))) {
            ++losses.byWriting;
        } else if (++taken == count) {
            return;
        }
    }
}

/// Captures on this thread, while another does the work on what was captured.
void record(Camera& camera, CaptureOptions const& options, FrameWorker::Work const& work,
            Losses& losses)
{
    StreamOptions streamOptions;
    // A stream needs two, of which the user need not know.
    streamOptions.buffers = std::max(options.buffers, 2);
    streamOptions.timeout = patience;
    FrameWorker worker(mostBytesWaiting, work);
    try {
        Stream stream = camera.stream(streamOptions);
        try {
            takeFrames(stream, options.count, worker, losses);
        } catch (Error const& error) {
            throw Failure(NoFrame, error.what());
        }
    } catch (...) {
        // What was captured before is kept; if that fails, it is the earlier failure.
        worker.finish();
        throw;
    }
    Progress const progress("writing the last frames");
    worker.finish();
}

} // namespace

void capture(CaptureOptions const& options)
{
    OutputFormat const format = outputFormatOf(options.outputFormat, options.output);
    // Finds fault with the name before the camera is kept busy.
    FrameSink sink(options.output, options.count);
    Selection const wish = wishOf(options);
    Camera camera = openCamera(options.camera);
    FrameEncoder encoder(select(camera, wish).format, format);
    sink.open();
    Losses losses;
    try {
        record(
            camera, options,
            [&](int number, FrameCopy const& frame) {
                sink.write(number, encoder.encode(frame.bytes, frame.layout));
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
