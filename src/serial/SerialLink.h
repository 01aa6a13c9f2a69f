// SPDX-License-Identifier: MIT
#pragma once

#include "serial/ReplyStream.h"

#include <mutex>

class QObject;
class QSerialPort;
class QString;

namespace ImageAcquisition
{

class IDevice;
class ZorvaneCamera;

/// The serial port of one of the vendor's cameras: finds it, opens it, and carries one request and
/// its reply after the other. Every call blocks its caller. Exchanges may come from any thread and
/// wait for each other; opening, closing and the limits are for one thread, while there are none.
class SerialLink
{
public:
    static constexpr int msReply = 100; ///< How long a reply is waited for after each write.
    static constexpr int msPause = 50;  ///< After the port was opened.
    static constexpr int attempts = 5;  ///< For each request.
    static constexpr int msTool = 30000;

    /// How long is waited, in milliseconds.
    struct Limits
    {
        int reply = msReply;
        int tool = msTool; ///< For each of the system's tools.
    };

    /// Opens nothing. The port is a child of @p owner, which destroys it, and which has no parent:
    /// with the first exchange both cease to belong to the thread that made them.
    explicit SerialLink(QObject* owner);
    SerialLink(QObject* owner, Limits const& limits);

    /// Finds the camera's tty in the kernel log and opens it, unless somebody holds it. Whether the
    /// port is open.
    bool open(IDevice const& device);

    void close();

    /// Sends a request and takes its reply of @p dataLength bytes behind the header; up to five
    /// attempts. On failure @p reply is left as it was.
    bool exchange(QByteArray const& request, int dataLength, QByteArray& reply);

    /// Keeps other threads' exchanges waiting while it is held, for exchanges that belong together.
    std::unique_lock<std::recursive_mutex> reserve() { return std::unique_lock(m_exchanging); }

    QSerialPort& port() { return *m_port; }

    Limits const& limits() const { return m_limits; }
    void setLimits(Limits const& limits) { m_limits = limits; }

private:
    bool isHeldBySomebody(QString const& name) const;
    bool openPort(QString const& name);
    QByteArray takeInput();
    bool sendNow(QByteArray const& request);
    bool awaitReply(QByteArray& reply);
    void leaveThread();

    std::recursive_mutex m_exchanging;
    QSerialPort* m_port;
    ReplyStream m_replies;
    Limits m_limits;
};

/// The link that a control uses: what its camera, or a link by itself, converts to.
class LinkReference
{
public:
    LinkReference(SerialLink& link) : m_link(&link) {}
    /// The camera's; none of no camera.
    LinkReference(ZorvaneCamera* camera);

    SerialLink* get() const { return m_link; }

private:
    SerialLink* m_link;
};

} // namespace ImageAcquisition
