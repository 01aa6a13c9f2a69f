// SPDX-License-Identifier: MIT
#pragma once

#include "Export.h"

namespace ImageAcquisition
{

class IFrameSize;

/**
 * @brief A pixel format that the camera offers, with its picture sizes.
 *
 * Formats belong to their camera and live as long as it does. Threads: any.
 */
class IMAGEACQUISITION_EXPORT IImageFormat
{
public:
    virtual ~IImageFormat();

    /// True for the object that stands for "no such format".
    virtual bool isInvalid() const = 0;

    /// Whether pictures are compressed, so that their sizes in bytes vary.
    virtual bool isCompressed() const = 0;

    /// Whether the format is converted in software and is not the camera's own.
    virtual bool isEmulated() const = 0;

    /// The four-character code, such as "YUYV"; "Invalid" for the invalid format.
    virtual char const* name() const = 0;

    /// The driver's description, such as "YUYV 4:2:2".
    virtual char const* description() const = 0;

    /// Number of picture sizes. 0 when the driver offers a range instead of a list.
    virtual int sizeNumber() const = 0;

    /// The size at @p index in the driver's order; the invalid size outside 0 to
    /// sizeNumber() - 1. Never null.
    virtual IFrameSize const* frameSize(int index) const = 0;

    /// The one invalid format of the process; never null.
    static IImageFormat const* invalid();
};

} // namespace ImageAcquisition
