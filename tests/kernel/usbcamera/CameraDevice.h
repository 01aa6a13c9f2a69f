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

    bool isPlugged() const { return m_connection != nullptr; }
    int descriptor() const { return isPlugged() ? m_connection->descriptor() : -1; }
    std::optional<Clock::time_point> nextDue() const;

    /// Takes one command from the host; call it when descriptor() is readable.
    void receive();

    /// Does what is due by now.
    void serve(Clock::time_point now);

    CameraModel& model() { return m_model; }
    ControlSet& controls() { return m_controls; }
    Faults& faults() { return m_faults; }
    VideoStream const& stream() const { return m_stream; }
    SerialPort const& serial() const { return m_serial; }
    unsigned plugged() const { return m_plugged; }

private:
    void tryToAttach(Clock::time_point now);
    void receiveControl(UsbIpCommand const& command);
    void receiveData(UsbIpCommand const& command);
    void unlink(UsbIpCommand const& command);
    void apply(ControlReply::Effect effect);
    void settle(Served served);

    unsigned m_number;
    CameraModel m_model;
    RequestLog& m_log;
    Faults m_faults;
    ControlSet m_controls;
    std::unique_ptr<ControlEndpoint> m_endpoint;
    VideoStream m_stream;
    SerialPort m_serial;
    VhciPort m_port;
    std::unique_ptr<UsbIpConnection> m_connection;
    std::optional<Clock::time_point> m_attachAt;
    unsigned m_plugged = 0; ///< how often so far
};

} // namespace UsbCamera
