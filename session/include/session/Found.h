// SPDX-License-Identifier: MIT
#pragma once

#include "session/SessionExport.h"

#include <memory>
#include <string>
#include <vector>

namespace ImageAcquisition
{
class IDevice;
}

namespace ImageAcquisition::Session
{

/**
 * @brief A camera that was found: a snapshot of what is known of it, which never asks it again.
 *
 * A value: copies share one immutable record, and keep it alive. Threads: any.
 */
class IMAGEACQUISITION_SESSION_EXPORT Found
{
public:
    /// Copies a record that a client made, or had from ICameraFactory; null texts become empty.
    /// Such a camera has no port().
    explicit Found(IDevice const& record);

    /// The library's view of the record; good as long as this or a copy of it lives. Speed and USB
    /// revision are the very device's, also where others with equal ids are plugged in.
    IDevice const& device() const noexcept;

    /// Position among the cameras that there were.
    int index() const;
    /// Path of the node, such as /dev/video0.
    std::string node() const;
    /// The driver's name for the camera.
    std::string name() const;
    /// USB serial number; empty when it has none.
    std::string serial() const;
    /// USB vendor and product id, such as 7a76:ca01.
    std::string id() const;
    /// Path of the USB port, such as 1-2.3; it stays with the socket. Empty when it is not known.
    std::string const& port() const noexcept;

    /// The text that finds this camera again after it was unplugged: "serial:..." or, without a
    /// serial number, "port:...", or else the node.
    std::string text() const;

    /// One line for a person: node, name, serial number, port.
    std::string description() const;

private:
    friend class NodeWalk;

    Found(std::shared_ptr<IDevice const> record, std::string port);

    std::shared_ptr<IDevice const> m_record;
    std::string m_port;
};

/// A video node that is no camera to be opened here.
struct LeftOut
{
    /// What stands in the way.
    enum class Why {
        NotOpened,  ///< It cannot be opened, or does not answer.
        NoCapture,  ///< It does not capture, or only in several planes.
        NoUsbDevice ///< No USB device stands behind it, or one without ids.
    };

    std::string node;         ///< Such as /dev/video1.
    std::string reason;       ///< In words, such as "does not capture video".
    Why why = Why::NotOpened; ///< The same for the program.
    int systemError = 0;      ///< `errno` where a system call failed; 0 otherwise.
};

/// Every video node of the machine, sorted by its number.
struct CameraList
{
    std::vector<Found> cameras;   ///< Those that can be opened here.
    std::vector<LeftOut> leftOut; ///< All other nodes.
};

/**
 * @brief Looks at every video node of the machine, in one walk over udev and sysfs.
 *
 * Each node is opened for a moment; each of the vendor's cameras is asked for its firmware revision
 * at its own bus address, which takes up to 5 s when it does not answer. A node that is not what it
 * should be is left out, with the reason; it spoils nothing for the others.
 * @throws Error (Refused) when udev cannot be reached.
 */
IMAGEACQUISITION_SESSION_EXPORT CameraList findCameras();

/**
 * @brief Finds one camera by a text.
 *
 * | text             | finds                                                        |
 * |------------------|--------------------------------------------------------------|
 * | `0`              | the camera at this position of findCameras()                 |
 * | `/dev/video0`    | the camera of this node; `video0`, or a link to it, as well  |
 * | `serial:VC1001`  | the camera with this USB serial number                       |
 * | `port:1-2.3`     | the camera at this USB port                                  |
 * | `name:USB Cam`   | the camera whose driver calls it so                          |
 * | `id:7a76:ca01`   | the camera with these USB ids; letters of any case           |
 *
 * Any other text is tried as a serial number, then as a port, a name, and ids; the first of them
 * that fits any camera decides.
 * @throws Error NotFound, with the nodes that were left out; NoPermission when the node that is
 * meant may not be opened; Unsupported when it has no USB device behind it; Ambiguous when several
 * fit, which it lists; BadRequest for an empty text.
 */
IMAGEACQUISITION_SESSION_EXPORT Found findCamera(std::string const& text);

/// The camera that @p text means among those of a list; as findCamera(std::string const&).
IMAGEACQUISITION_SESSION_EXPORT Found findCamera(std::string const& text, CameraList const& list);

} // namespace ImageAcquisition::Session
