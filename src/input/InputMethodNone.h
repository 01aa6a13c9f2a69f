// SPDX-License-Identifier: MIT
#pragma once

#include "input/InputMethod.h"

namespace ImageAcquisition
{

/// Stands for the input method of a device that offers none: every call fails.
class InputMethodNone : public InputMethod
{
public:
    InputMethodNone();

    int setup(int bufferCount, unsigned int imageSize) override;
    int cleanup() override;
    int startCapture() override;
    int stopCapture() override;
    IFrame* acquireFrame() override;
    int releaseFrame(IFrame* frame) override;
};

} // namespace ImageAcquisition
