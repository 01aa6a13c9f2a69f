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
    : _number(number), _model(model), _log(log), _controls(_model, _faults), _stream(_faults),
      _serial(number, _controls, _faults, log), _port(model.controller, model.port, model.speed)
{
}

void CameraDevice::plug()
{
    if (!isPlugged()) {
        _attachAt = Clock::now();
    }
}

void CameraDevice::unplug(std::string const& why)
{
    _attachAt.reset();
    if (!isPlugged()) {
        return;
    }
    _connection.reset();
    _stream.stop();
    _stream.forgetTransfers();
    _serial.reset();
    _log.event(_number, "unplug", why);
}

void CameraDevice::tryToAttach(Clock::time_point now)
{
    int const socket = _port.attach();
    if (socket < 0) {
        _attachAt = now + attachPause;
        return;
    }
    _attachAt.reset();
    // A camera that gets its power back has forgotten everything.
    _controls.reset();
    _endpoint = std::make_unique<ControlEndpoint>(_model, _controls, _faults);
    _connection = std::make_unique<UsbIpConnection>(socket);
    ++_plugged;
    _log.event(_number, "plug");
}

std::optional<Clock::time_point> CameraDevice::nextDue() const
{
    std::optional<Clock::time_point> due = _attachAt;
    for (auto const& other : {_stream.nextDue(), _serial.nextDue()}) {
        if (other && (!due || *other < *due)) {
            due = other;
        }
    }
    return due;
}

void CameraDevice::receive()
{
    auto const command = _connection->receive();
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
    bool const wasPending = _stream.unlink(command.unlinked) || _serial.unlink(command.unlinked);
    // The serial events' transfer is kept nowhere, since there never is an event.
    _connection->confirmUnlink(command.sequence, wasPending);
}

void CameraDevice::receiveControl(UsbIpCommand const& command)
{
    if (ControlEndpoint::isUnitRequest(command.setup) && countDown(_faults.unplugInControl)) {
        unplug("in a control request");
        return;
    }
    ControlReply const reply = _endpoint->handle(command.setup, command.data);
    _log.control(_number, command.setup, command.data, reply);
    bool isSent = false;
    if (reply.isStalled) {
        isSent = _connection->complete(command.sequence, -EPIPE, 0);
    } else if (command.isIn) {
        isSent = _connection->complete(command.sequence, reply.data);
    } else {
        isSent = _connection->complete(command.sequence, 0, command.data.size());
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
        _stream.start(_endpoint->negotiation().committed(), _endpoint->negotiation().payloadSize(),
                      Clock::now());
        _log.event(_number, "stream-start");
        break;
    case ControlReply::Effect::StopStream:
        _stream.stop();
        _log.event(_number, "stream-stop");
        break;
    case ControlReply::Effect::Reset:
        unplug("reset by the host");
        _attachAt = Clock::now() + _model.resetDelay;
        break;
    }
}

void CameraDevice::receiveData(UsbIpCommand const& command)
{
    switch (command.endpoint) {
    case videoEndpoint:
        _stream.submit(command.sequence, command.length);
        break;
    case serialInEndpoint:
        _serial.submit(command.sequence, command.length);
        break;
    case serialOutEndpoint:
        if (!_connection->complete(command.sequence, 0, command.data.size())) {
            unplug("the host has gone");
        } else if (!_serial.receive(command.data, Clock::now())) {
            unplug("in a serial exchange");
        }
        break;
    case serialEventEndpoint:
        break;
    default:
        _connection->complete(command.sequence, -EPIPE, 0);
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
    if (_attachAt && *_attachAt <= now) {
        tryToAttach(now);
    }
    if (isPlugged()) {
        settle(_stream.serve(*_connection, now));
    }
    if (isPlugged()) {
        settle(_serial.serve(*_connection, now));
    }
}

} // namespace UsbCamera
