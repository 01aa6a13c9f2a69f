// SPDX-License-Identifier: MIT
#pragma once

#include "Export.h"

namespace ImageAcquisition
{

class IBlockingCamera;
class IBlockingCameraMonitor;
class ICameraEvent;
class IContinuousCameraMonitor;
class IDevice;
class IDeviceList;

/**
 * @brief The way into the library: everything else is made here.
 *
 * Whatever a create operation returns is new and belongs to the caller, who deletes it through the
 * interface's destructor.
 *
 * Threads: any operation may be called from any thread.
 */
class IMAGEACQUISITION_EXPORT ICameraFactory
{
public:
    /// The one factory of the process. It lives until the process exits.
    static ICameraFactory& getUniqueInstance();

    virtual ~ICameraFactory();

    /**
     * @brief Describes one camera.
     * @param nodeName short name of its node, such as video0; null gives null.
     * @return the record, or null when the node is absent, cannot be opened or does not capture.
     * @throws std::invalid_argument (what() is "stoul") when no USB device stands behind the node.
     */
    virtual IDevice* createDevice(char const* nodeName) const = 0;

    /**
     * @brief Describes all cameras from /dev/video0 to /dev/video64.
     *
     * Opens each node for a moment, and asks each of the vendor's cameras for its firmware
     * revision, which takes up to 5 s when one does not answer.
     * @return the list, never null; it is empty when there is no camera.
     * @throws std::invalid_argument (what() is "stoul") when no USB device stands behind one of the
     * capture nodes; no list is made then.
     */
    virtual IDeviceList* createDeviceList() const = 0;

    /**
     * @brief Opens a camera.
     * @param device the record of the camera; it is copied. Null gives null.
     * @return the camera, or null when it could not be initialised; one of the vendor's cameras is
     * then reset. A camera whose node has vanished is returned all the same: it has no formats
     * and no controls, its capture calls fail, and errno tells why the node could not be opened.
     * One with a serial link whose module is not installed is returned with its video, without the
     * link's controls, and with a line on standard error.
     */
    virtual IBlockingCamera* createBlockingCamera(IDevice const* device) const = 0;

    /// Makes an empty event, for IBlockingCameraMonitor::getEvent() to fill.
    virtual ICameraEvent* createEvent() const = 0;

    /// Makes a monitor that is asked for events. It is not started.
    virtual IBlockingCameraMonitor* createBlockingCameraMonitor() const = 0;

    /// Makes a monitor that calls the application back. It is not started.
    virtual IContinuousCameraMonitor* createContinuousCameraMonitor() const = 0;
};

} // namespace ImageAcquisition
