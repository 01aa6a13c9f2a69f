// SPDX-License-Identifier: MIT
#include "CameraDevice.h"

#include "Descriptors.h"

#include <cerrno>

namespace UsbCamera
{

namespace
{

/// The controller tells nobody when a port has become free again.
constexpr std::chrono::milliseconds attachPause{20};

} // namespace

CameraDevice::CameraDevice(unsigned number, CameraModel const& model, RequestLog& log)
    : m_number(number), m_model(model), m_log(log), m_controls(m_model, m_faults),
      m_stream(m_faults), m_serial(number, m_controls, m_faults, log),
      m_port(model.controller, model.port, model.speed)
{
}

void CameraDevice::plug()
{
    if (!isPlugged()) {
        m_attachAt = Clock::now();
    }
}

void CameraDevice::unplug(std::string const& why)
{
    m_attachAt.reset();
    if (!isPlugged()) {
        return;
    }
    m_connection.reset();
    m_stream.stop();
    m_stream.forgetTransfers();
    m_serial.reset();
    m_log.event(m_number, "unplug", why);
}

void CameraDevice::tryToAttach(Clock::time_point now)
{
    int const socket = m_port.attach();
    if (socket < 0) {
        m_attachAt = now + attachPause;
        return;
    }
    m_attachAt.reset();
    // A camera that gets its power back has forgotten everything.
    m_controls.reset();
    m_endpoint = std::make_unique<ControlEndpoint>(m_model, m_controls, m_faults);
    m_connection = std::make_unique<UsbIpConnection>(socket);
    ++m_plugged;
    m_log.event(m_number, "plug");
}

std::optional<Clock::time_point> CameraDevice::nextDue() const
{
    std::optional<Clock::time_point> due = m_attachAt;
    for (auto const& other : {m_stream.nextDue(), m_serial.nextDue()}) {
        if (other && (!due || *other < *due)) {
            due = other;
        }
    }
    return due;
}

void CameraDevice::receive()
{
    auto const command = m_connection->receive();
    if (!command) {
        unplug("the host has gone");
    } else if (command->kind == UsbIpCommand::Kind::Unlink) {
        unlink(*command);
    } else if (command->endpoint == 0) {
        receiveControl(*command);
    } else {
        receiveData(*command);
    }
}

void CameraDevice::unlink(UsbIpCommand const& command)
{
    bool const wasPending = m_stream.unlink(command.unlinked) || m_serial.unlink(command.unlinked);
    // The serial events' transfer is kept nowhere, since there never is an event.
    m_connection->confirmUnlink(command.sequence, wasPending);
}

void CameraDevice::receiveControl(UsbIpCommand const& command)
{
    if (ControlEndpoint::isUnitRequest(command.setup) && countDown(m_faults.unplugInControl)) {
        unplug("in a control request");
        return;
    }
    ControlReply const reply = m_endpoint->handle(command.setup, command.data);
    m_log.control(m_number, command.setup, command.data, reply);
    bool isSent = false;
    if (reply.isStalled) {
        isSent = m_connection->complete(command.sequence, -EPIPE, 0);
    } else if (command.isIn) {
        isSent = m_connection->complete(command.sequence, reply.data);
    } else {
        isSent = m_connection->complete(command.sequence, 0, command.data.size());
    }
    if (!isSent) {
        unplug("the host has gone");
        return;
    }
    apply(reply.effect);
}

void CameraDevice::apply(ControlReply::Effect effect)
{
    switch (effect) {
    case ControlReply::Effect::None:
        break;
    case ControlReply::Effect::StartStream:
        m_stream.start(m_endpoint->negotiation().committed(),
                       m_endpoint->negotiation().payloadSize(), Clock::now());
        m_log.event(m_number, "stream-start");
        break;
    case ControlReply::Effect::StopStream:
        m_stream.stop();
        m_log.event(m_number, "stream-stop");
        break;
    case ControlReply::Effect::Reset:
        unplug("reset by the host");
        m_attachAt = Clock::now() + m_model.resetDelay;
        break;
    }
}

void CameraDevice::receiveData(UsbIpCommand const& command)
{
    switch (command.endpoint) {
    case videoEndpoint:
        m_stream.submit(command.sequence, command.length);
        break;
    case serialInEndpoint:
        m_serial.submit(command.sequence, command.length);
        break;
    case serialOutEndpoint:
        if (!m_connection->complete(command.sequence, 0, command.data.size())) {
            unplug("the host has gone");
        } else if (!m_serial.receive(command.data, Clock::now())) {
            unplug("in a serial exchange");
        }
        break;
    case serialEventEndpoint:
        break;
    default:
        m_connection->complete(command.sequence, -EPIPE, 0);
        break;
    }
}

void CameraDevice::settle(Served served)
{
    if (served == Served::HostIsGone) {
        unplug("the host has gone");
    } else if (served == Served::MustUnplug) {
        unplug("in a frame");
    }
}

void CameraDevice::serve(Clock::time_point now)
{
    if (m_attachAt && *m_attachAt <= now) {
        tryToAttach(now);
    }
    if (isPlugged()) {
        settle(m_stream.serve(*m_connection, now));
    }
    if (isPlugged()) {
        settle(m_serial.serve(*m_connection, now));
    }
}

} // namespace UsbCamera
