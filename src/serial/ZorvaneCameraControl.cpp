// SPDX-License-Identifier: MIT
#include "serial/ZorvaneCameraControl.h"

#include "control/ControlTexts.h"
#include "serial/UVCStringBuilder.h"

#include <QThread>

namespace ImageAcquisition
{

namespace
{

// Bits of the UVC GET_INFO reply.
constexpr int getSupported = 0x01;
constexpr int setSupported = 0x02;
constexpr int autoUpdate = 0x08;

} // namespace

ZorvaneCameraControl::ZorvaneCameraControl(LinkReference link, char const* name, int selector,
                                           int unit, Family family, Type type)
    : m_link(link.get()), m_selector(selector), m_unit(unit), m_name(name == nullptr ? "" : name),
      m_family(family), m_type(type)
{
}

ZorvaneCameraControl::~ZorvaneCameraControl() = default;

char const* ZorvaneCameraControl::typeString() const
{
    return controlTypeText(type());
}

char const* ZorvaneCameraControl::familyString() const
{
    return ICameraControl::familyString(family());
}

bool ZorvaneCameraControl::isReadOnly() const
{
    return (m_infoFlags & getSupported) != 0 && (m_infoFlags & setSupported) == 0;
}

bool ZorvaneCameraControl::isWriteOnly() const
{
    return (m_infoFlags & setSupported) != 0 && (m_infoFlags & getSupported) == 0;
}

bool ZorvaneCameraControl::needsClassUpdate() const
{
    // The inverse of the bit. Kept as it is: docs/behaviour.md, The serial link.
    return (m_infoFlags & autoUpdate) == 0;
}

bool ZorvaneCameraControl::updateState()
{
    return initFlags();
}

bool ZorvaneCameraControl::init()
{
    bool const lengthKnown = initControlLength();
    bool const flagsKnown = initFlags();
    return lengthKnown && flagsKnown;
}

void ZorvaneCameraControl::setShared(int offset, int length)
{
    m_shared = true;
    m_sharedOffset = offset;
    m_sharedLength = length;
}

bool ZorvaneCameraControl::fieldLiesWithinData(int offset, int length) const
{
    return offset >= 0 && length >= 0 && offset <= m_dataLength - length;
}

bool ZorvaneCameraControl::hasUsableLayout() const
{
    return m_dataLength >= 0 && m_dataLength <= UVCStringBuilder::__maxLength &&
           (!m_shared || fieldLiesWithinData(m_sharedOffset, m_sharedLength));
}

bool ZorvaneCameraControl::initControlLength()
{
    QByteArray request;
    QByteArray reply;
    bool const answered = UVCStringBuilder::buildLengthRequest(m_selector, m_unit, request) &&
                          sendCommand(request, UVCStringBuilder::__lengthRequestLength, reply);
    if (answered) {
        m_dataLength = static_cast<int>(UVCStringBuilder::extractValueFromData(
            reply, UVCStringBuilder::__lengthRequestLength, 0));
    }
    QThread::msleep(_msDelay);
    return answered && m_dataLength >= 0;
}

bool ZorvaneCameraControl::initFlags()
{
    QByteArray request;
    QByteArray reply;
    bool const answered = hasUsableLayout() &&
                          UVCStringBuilder::buildInfoRequest(m_selector, m_unit, request) &&
                          sendCommand(request, UVCStringBuilder::__infoRequestLength, reply);
    if (answered) {
        m_infoFlags = static_cast<int>(UVCStringBuilder::extractValueFromData(
            reply, UVCStringBuilder::__infoRequestLength, 0));
    }
    QThread::msleep(_msDelay);
    return answered;
}

bool ZorvaneCameraControl::initDefaultValue()
{
    long long value = 0;
    bool const answered = queryValue(UVCStringBuilder::buildDefaultValueRequest, value);
    if (answered) {
        m_defaultValue = static_cast<int>(value);
        m_currentValue = m_defaultValue;
    }
    QThread::msleep(_msDelay);
    return answered;
}

bool ZorvaneCameraControl::getMinimum(int& minimum)
{
    long long value = 0;
    bool const answered = queryValue(UVCStringBuilder::buildMinRequest, value);
    if (answered) {
        minimum = static_cast<int>(value);
    }
    return answered;
}

bool ZorvaneCameraControl::getMaximum(int& maximum)
{
    long long value = 0;
    bool const answered = queryValue(UVCStringBuilder::buildMaxRequest, value);
    if (answered) {
        maximum = static_cast<int>(value);
    }
    return answered;
}

bool ZorvaneCameraControl::sendCommand(QByteArray const& request, int dataLength,
                                       QByteArray& reply) const
{
    return m_link != nullptr && m_link->exchange(request, dataLength, reply);
}

bool ZorvaneCameraControl::exchange(RequestBuilder build, QByteArray& reply) const
{
    QByteArray request;
    return hasUsableLayout() && build(m_selector, m_unit, m_dataLength, request) &&
           sendCommand(request, m_dataLength, reply);
}

bool ZorvaneCameraControl::queryValue(RequestBuilder build, long long& value) const
{
    QByteArray reply;
    if (!exchange(build, reply)) {
        return false;
    }
    value = m_shared ? UVCStringBuilder::extractValueFromData(reply, m_sharedLength, m_sharedOffset)
                     : UVCStringBuilder::extractValueFromData(reply, m_dataLength, 0);
    return true;
}

bool ZorvaneCameraControl::getControlValue(long long& value) const
{
    value = m_currentValue;
    QByteArray reply;
    if (!exchange(UVCStringBuilder::buildGetRequest, reply)) {
        return false;
    }
    value = UVCStringBuilder::extractValueFromData(reply, m_dataLength, 0);
    return true;
}

bool ZorvaneCameraControl::getSharedControlValue(long long& value, int offset, int length) const
{
    QByteArray reply;
    if (!fieldLiesWithinData(offset, length) ||
        !exchange(UVCStringBuilder::buildGetRequest, reply)) {
        return false;
    }
    value = UVCStringBuilder::extractValueFromData(reply, length, offset);
    return true;
}

bool ZorvaneCameraControl::sendWhole(unsigned long long value) const
{
    QByteArray request;
    QByteArray reply;
    return hasUsableLayout() &&
           UVCStringBuilder::buildSetRequest(m_selector, m_unit, m_dataLength, value, request) &&
           sendCommand(request, m_dataLength, reply);
}

bool ZorvaneCameraControl::setControlValue(int value)
{
    bool const sent = sendWhole(static_cast<unsigned long long>(static_cast<long long>(value)));
    m_currentValue = value;
    return sent;
}

bool ZorvaneCameraControl::setSharedControlValue(int value, int offset, int length)
{
    // The other parts must not change between reading and writing.
    auto const reserved =
        m_link == nullptr ? std::unique_lock<std::recursive_mutex>() : m_link->reserve();
    long long current = 0;
    bool const known = fieldLiesWithinData(offset, length) && getControlValue(current);
    QThread::msleep(_msDelay);
    return known && sendWhole(UVCStringBuilder::buildSharedValue(
                        static_cast<unsigned long long>(current), value, length, offset));
}

bool ZorvaneCameraControl::readValue(long long& value) const
{
    return m_shared ? getSharedControlValue(value, m_sharedOffset, m_sharedLength)
                    : getControlValue(value);
}

bool ZorvaneCameraControl::writeValue(int value)
{
    bool const fieldWritten =
        m_shared && setSharedControlValue(value, m_sharedOffset, m_sharedLength);
    if (!fieldWritten && !setControlValue(value)) {
        return false;
    }
    m_currentValue = value;
    return true;
}

} // namespace ImageAcquisition
