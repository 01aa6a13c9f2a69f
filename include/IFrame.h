// SPDX-License-Identifier: MIT
#pragma once

#include "Export.h"
#include "FrameTimeStamp.h"

namespace ImageAcquisition
{

/**
 * @brief A captured picture, lent by the camera.
 *
 * The frame and its bytes are good until it is given back with IBlockingCamera::releaseFrame() or
 * the camera's cleanup() is called. Never delete a frame. Threads: a borrowed frame may be read
 * and given back from any thread.
 */
class IMAGEACQUISITION_EXPORT IFrame
{
public:
    virtual ~IFrame();

    /// True when there was no picture to be had. Such a frame still carries readable zeros.
    virtual bool isInvalid() const = 0;

    /// Bytes of the picture; the same as bytesUsed(), and no more to be believed.
    virtual unsigned int size() const = 0;

    /// The picture's first byte.
    virtual unsigned char const* bytePtr() const = 0;

    /// The driver's number of the frame since streaming began; a gap means lost frames. 0 where
    /// the transfer method has none.
    virtual unsigned long long counter() const = 0;

    /// When the driver captured the frame; zero where the transfer method has none.
    virtual FrameTimeStamp timeStamp() const = 0;

    /// Whether the driver found the data damaged. The frame must be released all the same.
    virtual bool isCorrupted() const = 0;

    /// Bytes that may be read at bytePtr().
    virtual unsigned int allocSize() const = 0;

    /// Bytes that the driver filled, as it says; a broken one may say more than allocSize().
    virtual unsigned int bytesUsed() const = 0;

    /// The picture's first byte; the bytes may be changed until the frame is released.
    virtual unsigned char* bytePtr() = 0;

    /// The invalid frame of the process, of 1 byte; never null. Releasing it does nothing.
    static IFrame* invalid();
};

} // namespace ImageAcquisition
