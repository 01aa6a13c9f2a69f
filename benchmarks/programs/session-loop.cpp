// SPDX-License-Identifier: MIT
// The same capture through the session layer: every frame as a lease.
#include "DeviceStub.h"
#include "Run.h"

#include <Session.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace
{

using namespace ImageAcquisition::Session;

void takeFrame(Stream& stream)
{
    Frame const frame = stream.next(std::chrono::seconds(2));
    if (!frame) {
        std::fprintf(stderr, "session-loop: %s\n", stream.statistics().text().c_str());
        std::exit(EXIT_FAILURE);
    }
}

void capture(Run const& run)
{
    // Not out of a list, as in the library's loop.
    DeviceStub record;
    record.node = run.node;
    Camera camera = Camera::open(Found(record));
    StreamOptions options;
    options.buffers = static_cast<int>(run.buffers);
    Stream stream = camera.stream(options);
    streamIsOn(run);
    for (unsigned int frame = 0; frame < run.frames; ++frame) {
        takeFrame(stream);
        if (frame == 0) {
            announceFrame(run);
        }
    }
    framesAreThrough();
}

} // namespace

int main(int argc, char** argv)
{
    Run const run = parseRun(argc, argv);
    try {
        capture(run);
    } catch (Error const& error) {
        std::fprintf(stderr, "session-loop: %s\n", error.what());
        return EXIT_FAILURE;
    }
    report(run);
}
