// SPDX-License-Identifier: MIT
#include "CurrentSelection.h"

#include "Failure.h"
#include "Parsing.h"

#include <stdexcept>

namespace Iacq
{

namespace
{

using namespace ImageAcquisition;

std::string sizeText(IFrameSize const& size)
{
    return std::to_string(size.width()) + "x" + std::to_string(size.height());
}

std::string intervalText(IFramePeriod const& period)
{
    return std::to_string(period.numerator()) + "/" + std::to_string(period.denominator());
}

int formatPosition(ICamera const& camera, std::string const& name)
{
    std::string offered;
    for (int i = 0; i < camera.formatNumber(); ++i) {
        if (name == camera.format(i)->name()) {
            return i;
        }
        offered += std::string(" ") + camera.format(i)->name();
    }
    throw Failure(BadUsage, "the camera has no format '" + name + "'; it has" + offered);
}

int sizePosition(IImageFormat const& format, std::string const& text)
{
    auto const wanted = parseSize(text);
    if (!wanted) {
        throw Failure(BadUsage, "'" + text + "' is no size; give it like 640x480");
    }
    std::string offered;
    for (int i = 0; i < format.sizeNumber(); ++i) {
        IFrameSize const& size = *format.frameSize(i);
        if (size.width() == wanted->width && size.height() == wanted->height) {
            return i;
        }
        offered += " " + sizeText(size);
    }
    throw Failure(BadUsage, std::string("the format ") + format.name() + " has no size " + text +
                                "; it has" + (offered.empty() ? " no list of sizes" : offered));
}

int intervalPosition(IFrameSize const& size, std::string const& text)
{
    auto const wanted = parseInterval(text);
    if (!wanted) {
        throw Failure(BadUsage, "'" + text + "' is no interval; give it like 1/30");
    }
    std::string offered;
    for (int i = 0; i < size.periodNumber(); ++i) {
        IFramePeriod const& period = *size.period(i);
        // Equal as fractions: a user need not know how the driver writes 1/30.
        if (1ULL * period.numerator() * wanted->denominator ==
            1ULL * period.denominator() * wanted->numerator) {
            return i;
        }
        offered += " " + intervalText(period);
    }
    throw Failure(BadUsage, "the size " + sizeText(size) + " has no interval " + text + "; it has" +
                                (offered.empty() ? " no list of intervals" : offered));
}

/// The position of the present format, size or interval where it still fits; else the first.
int currentFormatPosition(ICamera const& camera, CurrentSelection const& current)
{
    for (int i = 0; i < camera.formatNumber(); ++i) {
        if (camera.format(i) == current.format) {
            return i;
        }
    }
    return 0;
}

int currentSizePosition(IImageFormat const& format, CurrentSelection const& current)
{
    for (int i = 0; i < format.sizeNumber(); ++i) {
        IFrameSize const& size = *format.frameSize(i);
        if (size.width() == current.size->width() && size.height() == current.size->height()) {
            return i;
        }
    }
    return 0;
}

int currentIntervalPosition(IFrameSize const& size, CurrentSelection const& current)
{
    for (int i = 0; i < size.periodNumber(); ++i) {
        IFramePeriod const& period = *size.period(i);
        if (period.numerator() == current.period->numerator() &&
            period.denominator() == current.period->denominator()) {
            return i;
        }
    }
    return 0;
}

} // namespace

CurrentSelection currentSelection(ICamera const& camera)
{
    try {
        return {camera.currentImageFormat(), camera.currentFrameSize(),
                camera.currentFrameInterval()};
    } catch (std::out_of_range const&) {
        // The device is set to a format that it does not list.
        return {IImageFormat::invalid(), IFrameSize::invalid(), IFramePeriod::invalid()};
    }
}

void select(ICamera& camera, WantedSelection const& wanted)
{
    if (wanted.isEmpty()) {
        return;
    }
    CurrentSelection const current = currentSelection(camera);
    int const format = wanted.format.empty() ? currentFormatPosition(camera, current)
                                             : formatPosition(camera, wanted.format);
    IImageFormat const& chosenFormat = *camera.format(format);
    int const size = wanted.size.empty() ? currentSizePosition(chosenFormat, current)
                                         : sizePosition(chosenFormat, wanted.size);
    IFrameSize const& chosenSize = *chosenFormat.frameSize(size);
    int const interval = wanted.interval.empty() ? currentIntervalPosition(chosenSize, current)
                                                 : intervalPosition(chosenSize, wanted.interval);
    if (!camera.setCurrentImageFormat(format, size, interval)) {
        throw Failure(CameraFailed, std::string("the camera refused the format ") +
                                        chosenFormat.name() + " " + sizeText(chosenSize));
    }
}

} // namespace Iacq
