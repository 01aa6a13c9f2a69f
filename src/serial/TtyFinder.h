// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace ImageAcquisition
{

/// What the kernel log says about the serial port of a camera.
struct TtyAnnouncement
{
    QString bus;  ///< Bus and port path of the USB device; empty when there is no announcement.
    QString port; ///< Name of the tty; empty when there is no announcement.
};

/// The pattern of the log line by which the CDC-ACM driver announces the tty on interface 5 of
/// the device with this V4L2 bus text, whose part behind the last "-" is the USB port path.
QString ttyPattern(char const* busInfo);

/// The last announcement in a kernel log: after a re-plug that is the one that counts.
TtyAnnouncement findTty(QString const& kernelLog, char const* busInfo);

} // namespace ImageAcquisition
