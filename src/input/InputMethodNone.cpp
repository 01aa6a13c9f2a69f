// SPDX-License-Identifier: MIT
#include "input/InputMethodNone.h"

namespace ImageAcquisition
{

InputMethodNone::InputMethodNone() : InputMethod(Read, -1) {}

int InputMethodNone::setup(int /*bufferCount*/, unsigned int /*imageSize*/)
{
    return -1;
}

int InputMethodNone::cleanup()
{
    return -1;
}

int InputMethodNone::startCapture()
{
    return -1;
}

int InputMethodNone::stopCapture()
{
    return -1;
}

IFrame* InputMethodNone::acquireFrame()
{
    return IFrame::invalid();
}

int InputMethodNone::releaseFrame(IFrame* /*frame*/)
{
    return -1;
}

} // namespace ImageAcquisition
