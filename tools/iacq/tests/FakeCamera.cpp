// SPDX-License-Identifier: MIT
#include "FakeCamera.h"

#include <stdexcept>

using namespace ImageAcquisition;

FakeCamera::FakeCamera() : m_invalid(std::make_unique<FakeControl<ICameraControl>>()) {}

FakeCamera::~FakeCamera() = default;

ICameraControl* FakeCamera::control(int position) const
{
    return position >= 0 && position < controlNumber() ? controls[std::size_t(position)]
                                                       : invalidControl();
}

ICameraControl* FakeCamera::control(char const* name) const
{
    for (ICameraControl* const candidate : controls) {
        if (std::string(name) == candidate->name()) {
            return candidate;
        }
    }
    return invalidControl();
}

ICameraControl* FakeCamera::invalidControl() const
{
    return m_invalid.get();
}

IImageFormat const* FakeCamera::format(int position) const
{
    return position >= 0 && position < formatNumber() ? &formats[std::size_t(position)]
                                                      : IImageFormat::invalid();
}

IImageFormat const* FakeCamera::currentImageFormat() const
{
    return format(setFormat);
}

IFrameSize const* FakeCamera::currentFrameSize() const
{
    return formats.at(std::size_t(setFormat)).frameSize(setSize);
}

IFramePeriod const* FakeCamera::currentFrameInterval() const
{
    return currentFrameSize()->period(setInterval);
}

bool FakeCamera::setCurrentImageFormat(int format, int frameSize, int framePeriod)
{
    ++timesSet;
    if (refusing || formats.at(std::size_t(format)).sizeNumber() <= frameSize) {
        return false;
    }
    setFormat = format;
    setSize = frameSize;
    setInterval = framePeriod;
    return true;
}
