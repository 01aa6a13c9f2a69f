// SPDX-License-Identifier: MIT
#pragma once

#include "ControlEndpoint.h"
#include "SerialPort.h"
#include "VideoStream.h"

namespace UsbCamera
{

/// One emulated camera: plugs itself into a port of the virtual controller and serves the host's
/// transfers there. It has no thread; its owner waits for descriptor() and nextDue() and calls
/// serve().
class CameraDevice
{
public:
    CameraDevice(unsigned number, CameraModel const& model, RequestLog& log);

    /// Asks for the port: as soon as it's free, the camera is attached by serve().
    void plug();
    void unplug(std::string const& why);

    bool isPlugged() const { return _connection != nullptr; }
    int descriptor() const { return isPlugged() ? _connection->descriptor() : -1; }
    std::optional<Clock::time_point> nextDue() const;

    /// Takes one command from the host; call it when descriptor() is readable.
    void receive();

    /// Does what is due by now.
    void serve(Clock::time_point now);

    CameraModel& model() { return _model; }
    ControlSet& controls() { return _controls; }
    Faults& faults() { return _faults; }
    VideoStream const& stream() const { return _stream; }
    SerialPort const& serial() const { return _serial; }
    unsigned plugged() const { return _plugged; }

private:
    void tryToAttach(Clock::time_point now);
    void receiveControl(UsbIpCommand const& command);
    void receiveData(UsbIpCommand const& command);
    void unlink(UsbIpCommand const& command);
    void apply(ControlReply::Effect effect);
    void settle(Served served);

    unsigned _number;
    CameraModel _model;
    RequestLog& _log;
    Faults _faults;
    ControlSet _controls;
    std::unique_ptr<ControlEndpoint> _endpoint;
    VideoStream _stream;
    SerialPort _serial;
    VhciPort _port;
    std::unique_ptr<UsbIpConnection> _connection;
    std::optional<Clock::time_point> _attachAt;
    unsigned _plugged = 0; ///< how often so far
};

} // namespace UsbCamera
