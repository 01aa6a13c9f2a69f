// SPDX-License-Identifier: MIT
#pragma once

/// What the command line asks of a capture, so that both loops are told the same way.
struct Run
{
    char const* node = "/dev/video0";
    unsigned int frames = 1000;
    unsigned int buffers = 4;
    bool startOnly = false; ///< Ends the process as soon as the stream is on.
    bool announced = false; ///< A byte on standard output tells of the first frame.
    bool listed = false; ///< Reads formats, sizes, intervals and controls first; the library does.
    bool reported = false; ///< A line at the end tells of memory and shared objects.
};

/// Ends the process with a usage text when the command line is wrong.
Run parseRun(int argc, char** argv);

/// What a measurement takes note of on the way. Both cost next to nothing where nobody looks.
void streamIsOn(Run const& run);
void framesAreThrough();

void announceFrame(Run const& run);
void report(Run const& run);
