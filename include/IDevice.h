// SPDX-License-Identifier: MIT
#pragma once

#include "Export.h"
#include "UsbSpeed.h"

namespace ImageAcquisition
{

/**
 * @brief Description of one video-capture node and of the USB device behind it.
 *
 * A record is a snapshot taken when it was made; it never asks the device again. Every text is
 * zero-terminated, never null, and stays valid as long as the record lives. Texts that neither the
 * driver nor USB supplied are empty.
 *
 * Threads: a record may be read from any thread.
 */
class IMAGEACQUISITION_EXPORT IDevice
{
public:
    virtual ~IDevice();

    /// Position in the list that the record was made for; 0 for a record made by itself.
    virtual int index() const = 0;

    /// The driver's name for the camera ("card"). Several cameras may share a name.
    virtual char const* name() const = 0;

    /// Path of the device node, such as /dev/video0.
    virtual char const* systemName() const = 0;

    /// Name of the kernel driver, such as uvcvideo.
    virtual char const* driverName() const = 0;

    /// Where the device sits, such as usb-0000:00:14.0-2.3.
    virtual char const* busInfo() const = 0;

    /// Version of the driver, such as 6.1.0.
    virtual char const* driverVersion() const = 0;

    /// USB vendor id: four lower-case hexadecimal digits.
    virtual char const* vendorId() const = 0;

    /// USB product id: four lower-case hexadecimal digits.
    virtual char const* productId() const = 0;

    /// USB manufacturer text.
    virtual char const* manufacturer() const = 0;

    /// USB serial number.
    virtual char const* serial() const = 0;

    /// Firmware revision. Only the vendor's cameras have one, and only if the process may open
    /// their USB node.
    virtual char const* firmwareVersion() const = 0;

    /// Whether the driver offers asynchronous input and output.
    virtual bool supportsAsynchIO() const = 0;

    /// Whether the node captures in the multi-planar formats too.
    virtual bool supportsMultiplane() const = 0;

    /// Whether frames can be had with read().
    virtual bool supportsReadWrite() const = 0;

    /// Whether frames can be streamed through buffers.
    virtual bool supportsStreaming() const = 0;

    /// Whether the node captures video.
    virtual bool supportsVideoCapture() const = 0;

    /// Whether this is one of the vendor's own cameras, told by its USB ids.
    virtual bool isaZorvaneDevice() const = 0;

    /// USB revision that the device claims, as a binary coded decimal: 0x0200 for USB 2.0.
    /// Of cameras with equal USB ids one answers for all: the integrator's guide, Several cameras.
    virtual unsigned short usbRevision() const = 0;

    /// Speed of the USB link. Of cameras with equal USB ids one answers for all, as above.
    virtual UsbSpeed usbSpeed() const = 0;
};

} // namespace ImageAcquisition
