// SPDX-License-Identifier: MIT
#include "serial/SerialLink.h"

#include "IDevice.h"
#include "serial/SystemTool.h"
#include "serial/TtyFinder.h"
#include "serial/UVCStringBuilder.h"

#include <QDebug>
#include <QElapsedTimer>
#include <QSerialPort>
#include <QThread>

namespace ImageAcquisition
{

SerialLink::SerialLink(QObject* owner) : SerialLink(owner, {}) {}

SerialLink::SerialLink(QObject* owner, Limits const& limits)
    : m_port(new QSerialPort(owner)), m_limits(limits)
{
}

bool SerialLink::open(IDevice const& device)
{
    if (device.systemName() != nullptr) {
        qInfo() << device.systemName();
    }
    QByteArray const output = SystemTool::run("dmesg", {}, m_limits.tool);
    // With its size: a zero byte must not hide the rest.
    QString const kernelLog = QString::fromLatin1(output.constData(), output.size());
    TtyAnnouncement const announcement = findTty(kernelLog, device.busInfo());
    if (announcement.bus.isEmpty() || announcement.port.isEmpty()) {
        qInfo() << "No match in dmesg";
    } else if (!isHeldBySomebody(announcement.port)) {
        openPort(announcement.port);
    }
    return m_port->isOpen();
}

bool SerialLink::isHeldBySomebody(QString const& name) const
{
    // Looked up in the working directory, not on the PATH: docs/integrators-guide.md, The tool
    // ./fuser.
    QByteArray const holders = SystemTool::run("./fuser", {"/dev/" + name}, m_limits.tool);
    return !QString(holders.constData()).isEmpty();
}

bool SerialLink::openPort(QString const& name)
{
    m_port->setPortName(name);
    if (!m_port->open(QIODevice::ReadWrite)) {
        qErrnoWarning("Error : TriggerThread::connectPort");
        qInfo() << "error code: " << m_port->error();
        return false;
    }
    m_replies.restart();
    qInfo() << "TriggerThread::connectPort()" << name;
    QThread::msleep(msPause);
    return true;
}

void SerialLink::close()
{
    if (m_port->isOpen()) {
        m_port->close();
    }
}

bool SerialLink::exchange(QByteArray const& request, int dataLength, QByteArray& reply)
{
    auto const reserved = reserve();
    if (!m_port->isOpen()) {
        return false;
    }
    int const expected = dataLength + UVCStringBuilder::__baseRequestLength;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        m_replies.append(takeInput());
        m_replies.expect(request, expected);
        if (sendNow(request) && awaitReply(reply)) {
            return true;
        }
    }
    return false;
}

/// Takes in what has come. The system's buffer has to be emptied first, since without an event loop
/// nothing else does; a camera that never stops talking gets no longer than a reply.
QByteArray SerialLink::takeInput()
{
    QElapsedTimer elapsed;
    elapsed.start();
    while (m_port->waitForReadyRead(0) && elapsed.elapsed() < m_limits.reply) {
    }
    return m_port->readAll();
}

/// Writes a request and waits until it has been sent. What cannot be sent now must not be sent
/// later, together with the next attempt.
bool SerialLink::sendNow(QByteArray const& request)
{
    bool sent = m_port->write(request) == request.size();
    while (sent && m_port->bytesToWrite() > 0) {
        sent = m_port->waitForBytesWritten(m_limits.reply);
    }
    leaveThread();
    if (!sent) {
        m_port->clear(QSerialPort::Output);
    }
    return sent;
}

/// The port needs no thread: it is waited for by whoever makes an exchange. As long as it has one,
/// an event loop there reads from it at any time, while another thread does. Only that thread can
/// let it go, and only now the port has all the notifiers that it makes for itself: made later,
/// they would complain that there is no thread.
void SerialLink::leaveThread()
{
    if (m_port->thread() == QThread::currentThread()) {
        QObject* const owner = m_port->parent();
        (owner == nullptr ? m_port : owner)->moveToThread(nullptr);
    }
}

/// Waits until the whole reply is in, but no longer than for any reply. Its first pieces may have
/// come in while the request went out.
bool SerialLink::awaitReply(QByteArray& reply)
{
    QElapsedTimer elapsed;
    elapsed.start();
    bool moreMayCome = true;
    while (moreMayCome) {
        m_replies.append(m_port->readAll());
        if (m_replies.take(reply)) {
            return true;
        }
        int const remaining = m_limits.reply - static_cast<int>(elapsed.elapsed());
        moreMayCome = remaining > 0 && m_port->waitForReadyRead(remaining);
    }
    m_replies.append(m_port->readAll());
    return m_replies.takeLast(reply);
}

} // namespace ImageAcquisition
