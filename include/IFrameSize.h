// SPDX-License-Identifier: MIT
#pragma once

#include "Export.h"

namespace ImageAcquisition
{

class IFramePeriod;

/**
 * @brief A picture size that the camera offers for one pixel format.
 *
 * Sizes belong to their format and live as long as the camera. Threads: any, except
 * bytesPerLine(), which asks the device and belongs to the camera's thread.
 */
class IMAGEACQUISITION_EXPORT IFrameSize
{
public:
    virtual ~IFrameSize();

    /// True for the object that stands for "no such size": all numbers 0.
    virtual bool isInvalid() const = 0;

    /// Pixels in a line.
    virtual unsigned int width() const = 0;

    /// Lines in a picture.
    virtual unsigned int height() const = 0;

    /**
     * @brief Bytes from one line to the next, of the format that is set on the device now.
     *
     * It is this size's own line length only while this size is the current one.
     * @return the length in bytes, or -1 when the device does not answer.
     */
    virtual int bytesPerLine() const = 0;

    /// Number of frame intervals. 0 when the driver offers a range instead of a list.
    virtual int periodNumber() const = 0;

    /// The interval at @p index in the driver's order; the invalid period outside 0 to
    /// periodNumber() - 1. Never null.
    virtual IFramePeriod const* period(int index) const = 0;

    /// The one invalid size of the process; never null.
    static IFrameSize const* invalid();
};

} // namespace ImageAcquisition
