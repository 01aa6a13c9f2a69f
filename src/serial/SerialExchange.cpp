// SPDX-License-Identifier: MIT
#include "serial/UVCStringBuilder.h"
#include "serial/ZorvaneCamera.h"
#include "serial/ZorvaneCameraControl.h"

#include <QElapsedTimer>
#include <QSerialPort>

namespace ImageAcquisition
{

namespace
{

/// Throws away what has come in. The system's buffer has to be emptied first, since without an
/// event loop nothing else does; a camera that never stops talking gets no longer than a reply.
void discardInput(QSerialPort& port)
{
    QElapsedTimer elapsed;
    elapsed.start();
    while (port.waitForReadyRead(0) && elapsed.elapsed() < ZorvaneCameraControl::_msTimeout) {
    }
    port.readAll();
}

/// Writes a request and sees it off. What cannot leave now must not leave later, together with the
/// next attempt.
bool sendNow(QSerialPort& port, QByteArray const& request)
{
    bool sent = port.write(request) == request.size();
    while (sent && port.bytesToWrite() > 0) {
        sent = port.waitForBytesWritten(ZorvaneCameraControl::_msTimeout);
    }
    if (!sent) {
        port.clear(QSerialPort::Output);
    }
    return sent;
}

/// Waits until the whole reply is in, but no longer than for any reply. Its first pieces may have
/// come in while the request went out.
void awaitReply(QSerialPort& port, int expected)
{
    QElapsedTimer elapsed;
    elapsed.start();
    int remaining = ZorvaneCameraControl::msReplyTimeout;
    while (port.bytesAvailable() < expected && remaining > 0 && port.waitForReadyRead(remaining)) {
        remaining = ZorvaneCameraControl::msReplyTimeout - static_cast<int>(elapsed.elapsed());
    }
}

} // namespace

int ZorvaneCameraControl::msReplyTimeout = _msTimeout;

bool ZorvaneCameraControl::sendCommand(QByteArray const& request, int dataLength,
                                       QByteArray& reply) const
{
    QSerialPort& port = m_camera->serialPort();
    if (!port.isOpen()) {
        return false;
    }
    int const expected = dataLength + UVCStringBuilder::__baseRequestLength;
    for (int attempt = 0; attempt < _nbRetries; ++attempt) {
        discardInput(port);
        if (!sendNow(port, request)) {
            continue;
        }
        awaitReply(port, expected);
        QByteArray const received = port.read(expected);
        if (received.size() >= expected) {
            reply = received;
            return true;
        }
    }
    return false;
}

} // namespace ImageAcquisition
