// SPDX-License-Identifier: MIT
#include "serial/ZorvaneCamera.h"

#include "serial/SystemTool.h"
#include "serial/TtyFinder.h"
#include "serial/ZorvaneCameraControlBoolean.h"
#include "serial/ZorvaneCameraControlNumeric.h"

#include <QDebug>
#include <QSerialPort>
#include <QThread>

namespace ImageAcquisition
{

namespace
{

bool isHeldBySomebody(QString const& port)
{
    // Looked up in the working directory, not on the PATH: the integrator provides the tool there.
    QByteArray const holders = SystemTool::run("./fuser", {"/dev/" + port});
    return !QString(holders.constData()).isEmpty();
}

} // namespace

ZorvaneCamera::ZorvaneCamera(IDevice const* device)
    : QObject(nullptr), Camera(device), m_serialPort(new QSerialPort(this))
{
}

ZorvaneCamera::~ZorvaneCamera() = default;

bool ZorvaneCamera::init()
{
    bool const linked = initCommunication();
    bool const initialised = Camera::init();
    return linked && initialised;
}

bool ZorvaneCamera::initCommunication()
{
    if (device()->systemName() != nullptr) {
        qInfo() << device()->systemName();
    }
    QByteArray const output = SystemTool::run("dmesg", {});
    // With its size: a zero byte must not hide the rest.
    QString const kernelLog = QString::fromLatin1(output.constData(), output.size());
    TtyAnnouncement const announcement = findTty(kernelLog, device()->busInfo());
    if (announcement.bus.isEmpty() || announcement.port.isEmpty()) {
        qInfo() << "No match in dmesg";
    } else if (!isHeldBySomebody(announcement.port)) {
        openPort(announcement.port);
    }
    return m_serialPort->isOpen();
}

bool ZorvaneCamera::openPort(QString const& name)
{
    m_serialPort->setPortName(name);
    if (!m_serialPort->open(QIODevice::ReadWrite)) {
        qErrnoWarning("Error : TriggerThread::connectPort");
        qInfo() << "error code: " << m_serialPort->error();
        return false;
    }
    m_replies.restart();
    qInfo() << "TriggerThread::connectPort()" << name;
    QThread::msleep(ZorvaneCameraControl::_msDelay);
    return true;
}

void ZorvaneCamera::endCommunication()
{
    if (m_serialPort->isOpen()) {
        m_serialPort->close();
    }
}

ExtensionUnit* ZorvaneCamera::createExtensionUnit() const
{
    return nullptr;
}

bool ZorvaneCamera::buildMainControlSet()
{
    for (ControlStruct const& row : _controlMap) {
        std::unique_ptr<ZorvaneCameraControl> control = createControl(row);
        if (!control) {
            continue;
        }
        bool const answered = control->init();
        appendControl(std::move(control));
        if (!answered) {
            return false;
        }
    }
    return true;
}

std::unique_ptr<ZorvaneCameraControl> ZorvaneCamera::createControl(ControlStruct const& row)
{
    auto const family = static_cast<ICameraControl::Family>(row.family);
    std::unique_ptr<ZorvaneCameraControl> control;
    switch (row.type) {
    case ICameraControl::Int32:
        control = std::make_unique<ZorvaneCameraControlNumeric<int>>(this, row.name, row.cid,
                                                                     row.unit, family);
        break;
    case ICameraControl::Boolean:
        control = std::make_unique<ZorvaneCameraControlBoolean>(this, row.name, row.cid, row.unit,
                                                                family);
        break;
    case ICameraControl::StringMenu:
        control = std::make_unique<ZorvaneCameraControlStringMenu>(
            this, row.name, row.cid, row.unit, family, menuSettings(row.name));
        break;
    default:
        return nullptr;
    }
    if (row.shared) {
        control->setShared(row.offset, row.length);
    }
    return control;
}

std::vector<ZorvaneCameraControlStringMenu::IndexSetting>
ZorvaneCamera::menuSettings(char const* name)
{
    auto const found = _stringMenuSettings.find(name);
    if (found == _stringMenuSettings.end()) {
        return {};
    }
    return found->second;
}

} // namespace ImageAcquisition
