// SPDX-License-Identifier: MIT
#pragma once

#include "Await.h"
#include "DeviceStub.h"
#include "ReplyTimeout.h"
#include "SerialFirmware.h"
#include "serial/ZorvaneCamera.h"

#include <QSerialPort>
#include <sys/ioctl.h>

#include <string>

/// A record of one of the vendor's cameras, on a port that no test machine has.
inline DeviceStub vendorRecord(bool ofTheVendor = true)
{
    DeviceStub record;
    record.bus = "usb-0000:00:14.0-2.3";
    record.firmware = "TJ8-1.3.0";
    if (ofTheVendor) {
        record.vendor = IMAGEACQUISITION_VENDOR_ID;
        record.product = IMAGEACQUISITION_PRODUCT_ID;
    }
    record.ofTheVendor = ofTheVendor;
    return record;
}

/// A serial-link camera that tests reach into. It is patient with answers.
class OpenedCamera : public ImageAcquisition::ZorvaneCamera
{
public:
    explicit OpenedCamera(DeviceStub const& record = vendorRecord(),
                          int msReply = ReplyTimeout::forAnswers)
        : ZorvaneCamera(&record, {msReply, ImageAcquisition::SerialLink::msTool})
    {
    }

    QSerialPort& serialPort() { return link().port(); }

    /// How long each of the system's tools may take.
    void limitTools(int milliseconds) { link().setLimits({link().limits().reply, milliseconds}); }

    using ZorvaneCamera::appendControl;
    using ZorvaneCamera::buildMainControlSet;
    using ZorvaneCamera::createExtensionUnit;
};

/// One whose port is open on a tty, without the search for it.
class LinkedCamera : public OpenedCamera
{
public:
    explicit LinkedCamera(std::string const& tty, DeviceStub const& record = vendorRecord())
        : OpenedCamera(record)
    {
        serialPort().setPortName(QString::fromStdString(tty));
        serialPort().open(QIODevice::ReadWrite);
    }

    /// Waits until so many bytes have come in that nobody has read yet; false after 5 s.
    bool awaitInput(int count)
    {
        return await([&] {
            int waiting = 0;
            return ioctl(serialPort().handle(), FIONREAD, &waiting) == 0 && waiting >= count;
        });
    }
};
