// SPDX-License-Identifier: MIT
#include "Connection.h"

#include "SerialLinkFault.h"
#include "SystemFailure.h"
#include "session/Error.h"
#include "system/VideoNode.h"

#include <ICameraFactory.h>
#include <IDevice.h>

#include <cerrno>
#include <utility>

namespace ImageAcquisition::Session
{

namespace
{

constexpr char operation[] = "open the camera";

} // namespace

Connection::Connection(Found found, std::unique_ptr<IBlockingCamera> camera)
    : m_found(std::move(found)), m_camera(std::move(camera))
{
}

std::shared_ptr<Connection> Connection::open(Found const& found)
{
    IDevice const& record = found.device();
    std::unique_ptr<IBlockingCamera> camera(
        ICameraFactory::getUniqueInstance().createBlockingCamera(&record));
    if (!camera) {
        throw Error({ErrorKind::Refused, operation,
                     "could not be initialised; the camera was reset", found.node(), 0,
                     record.isaZorvaneDevice() ? serialLinkFault(record.busInfo()) : ""});
    }
    // The library makes a camera without anything of a node that it cannot open.
    VideoNode node;
    if (camera->formatNumber() == 0 && !node.open(found.node().c_str())) {
        throw systemFailure(operation, found, errno);
    }
    return std::make_shared<Connection>(found, std::move(camera));
}

} // namespace ImageAcquisition::Session
