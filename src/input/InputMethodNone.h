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

    int setup(int, unsigned int) override;
    int startCapture() override;
    IFrame* acquireFrame() override;
    int releaseFrame(IFrame*) override;
    int stopCapture() override;
    int cleanup() override;
};

} // namespace ImageAcquisition
