// SPDX-License-Identifier: MIT
#pragma once

#include "input/InputMethod.h"

namespace ImageAcquisition
{

/// Stands for the input method of a device that offers none: every call fails.
class InputMethodNone : public InputMethod
{
public:
    InputMethodNone() : InputMethod(Read, -1) {}

    int setup(int /*bufferCount*/, unsigned int /*imageSize*/) override { return -1; }
    int startCapture() override { return -1; }
    IFrame* acquireFrame() override { return IFrame::invalid(); }
    int releaseFrame(IFrame* /*frame*/) override { return -1; }
    int stopCapture() override { return -1; }
    int cleanup() override { return -1; }
};

} // namespace ImageAcquisition
