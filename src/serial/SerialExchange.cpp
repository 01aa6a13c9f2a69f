// SPDX-License-Identifier: MIT
#include "serial/ReplyStream.h"
#include "serial/UVCStringBuilder.h"
#include "serial/ZorvaneCamera.h"
#include "serial/ZorvaneCameraControl.h"

#include <QElapsedTimer>
#include <QSerialPort>

namespace ImageAcquisition
{

namespace
{

/// Takes in what has come. The system's buffer has to be emptied first, since without an event loop
/// nothing else does; a camera that never stops talking gets no longer than a reply.
QByteArray takeInput(QSerialPort& port)
{
    QElapsedTimer elapsed;
    elapsed.start();
    while (port.waitForReadyRead(0) && elapsed.elapsed() < ZorvaneCameraControl::_msTimeout) {
    }
    return port.readAll();
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
bool awaitReply(QSerialPort& port, ReplyStream& replies, QByteArray& reply)
{
    QElapsedTimer elapsed;
    elapsed.start();
    int remaining = ZorvaneCameraControl::msReplyTimeout;
    do {
        replies.append(port.readAll());
        if (replies.take(reply)) {
            return true;
        }
        remaining = ZorvaneCameraControl::msReplyTimeout - static_cast<int>(elapsed.elapsed());
    } while (remaining > 0 && port.waitForReadyRead(remaining));
    replies.append(port.readAll());
    return replies.takeLast(reply);
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
    ReplyStream& replies = m_camera->replies();
    int const expected = dataLength + UVCStringBuilder::__baseRequestLength;
    for (int attempt = 0; attempt < _nbRetries; ++attempt) {
        replies.append(takeInput(port));
        replies.expect(request, expected);
        if (sendNow(port, request) && awaitReply(port, replies, reply)) {
            return true;
        }
    }
    return false;
}

} // namespace ImageAcquisition
