// SPDX-License-Identifier: MIT
#include "serial/UVCStringBuilder.h"

#include <linux/videodev2.h>

#include <QtGlobal>

#include <cstdint>
#include <cstring>

namespace ImageAcquisition
{

namespace
{

constexpr int bitsPerByte = 8;

QString fourDigits(int number, int width)
{
    return QString("%1").arg(number, width, 16, QChar('0'));
}

QByteArray buildRequest(QString const& prefix, int cid, int unit, int dataLength)
{
    QString const header =
        prefix + UVCStringBuilder::buildCIDString(cid) + UVCStringBuilder::buildUnitString(unit);
    return QByteArray::fromHex(header.toLocal8Bit()) +
           UVCStringBuilder::buildDataLengthString(dataLength);
}

} // namespace

std::map<unsigned int, unsigned int> const UVCStringBuilder::__idMap = {
    {V4L2_CID_FOCUS_AUTO, 8},
    {V4L2_CID_FOCUS_ABSOLUTE, 6},
    {V4L2_CID_BRIGHTNESS, 2},
    {V4L2_CID_CONTRAST, 3},
    {V4L2_CID_GAIN, 4},
    {V4L2_CID_HUE, 6},
    {V4L2_CID_HUE_AUTO, 16},
    {V4L2_CID_SATURATION, 7},
    {V4L2_CID_SHARPNESS, 8},
    {V4L2_CID_GAMMA, 9},
    {V4L2_CID_WHITE_BALANCE_TEMPERATURE, 10},
    {V4L2_CID_AUTO_WHITE_BALANCE, 11},
    {V4L2_CID_EXPOSURE_AUTO, 2},
    {V4L2_CID_EXPOSURE_ABSOLUTE, 4},
};

QString UVCStringBuilder::buildSetString()
{
    return QStringLiteral("2101");
}

QString UVCStringBuilder::buildGetString()
{
    return QStringLiteral("A181");
}

QString UVCStringBuilder::buildMinString()
{
    return QStringLiteral("A182");
}

QString UVCStringBuilder::buildMaxString()
{
    return QStringLiteral("A183");
}

QString UVCStringBuilder::buildLengthString()
{
    return QStringLiteral("A185");
}

QString UVCStringBuilder::buildInfoString()
{
    return QStringLiteral("A186");
}

QString UVCStringBuilder::buildDefaultValueString()
{
    return QStringLiteral("A187");
}

QString UVCStringBuilder::buildCIDString(int cid)
{
    return fourDigits(cid, __CIDLength);
}

QString UVCStringBuilder::buildUnitString(int unit)
{
    return fourDigits(unit, __unitLength);
}

QByteArray UVCStringBuilder::buildDataLengthString(int length)
{
    return buildDataString(static_cast<unsigned int>(length), 2);
}

QByteArray UVCStringBuilder::buildDataString(unsigned long long value, int length)
{
    QByteArray data;
    for (int i = 0; i < qMin(length, __maxLength); ++i) {
        data.append(static_cast<char>((value >> (bitsPerByte * i)) & 0xffu));
    }
    return data;
}

unsigned long long UVCStringBuilder::buildSharedValue(unsigned long long current, int fieldValue,
                                                      int fieldLength, int fieldOffset)
{
    auto const field = static_cast<unsigned long long>(static_cast<long long>(fieldValue));
    unsigned long long merged = current;
    for (int i = 0; i < qMin(fieldLength, __maxLength); ++i) {
        int const position = fieldOffset + i;
        if (position < 0 || position >= __maxLength) {
            continue;
        }
        unsigned long long const byte = (field >> (bitsPerByte * i)) & 0xffu;
        merged &= ~(0xffULL << (bitsPerByte * position));
        merged |= byte << (bitsPerByte * position);
    }
    return merged;
}

bool UVCStringBuilder::buildSetRequest(int cid, int unit, int length, unsigned long long value,
                                       QByteArray& request)
{
    request = buildRequest(buildSetString(), cid, unit, length) + buildDataString(value, length);
    return true;
}

bool UVCStringBuilder::buildGetRequest(int cid, int unit, int length, QByteArray& request)
{
    request = buildRequest(buildGetString(), cid, unit, length);
    return true;
}

bool UVCStringBuilder::buildMinRequest(int cid, int unit, int length, QByteArray& request)
{
    request = buildRequest(buildMinString(), cid, unit, length);
    return true;
}

bool UVCStringBuilder::buildMaxRequest(int cid, int unit, int length, QByteArray& request)
{
    request = buildRequest(buildMaxString(), cid, unit, length);
    return true;
}

bool UVCStringBuilder::buildDefaultValueRequest(int cid, int unit, int length, QByteArray& request)
{
    request = buildRequest(buildDefaultValueString(), cid, unit, length);
    return true;
}

bool UVCStringBuilder::buildLengthRequest(int cid, int unit, QByteArray& request)
{
    request = buildRequest(buildLengthString(), cid, unit, __lengthRequestLength);
    return true;
}

bool UVCStringBuilder::buildInfoRequest(int cid, int unit, QByteArray& request)
{
    request = buildRequest(buildInfoString(), cid, unit, __infoRequestLength);
    return true;
}

long long UVCStringBuilder::extractValueFromData(QByteArray const& reply, int length, int offset)
{
    std::int64_t value = 0;
    if (length < 0 || length > static_cast<int>(sizeof value)) {
        qFatal("A control value of %d bytes does not fit", length);
    }
    std::memcpy(&value, reply.constData() + __baseRequestLength + offset,
                static_cast<std::size_t>(length));
    if (length == 1) {
        return static_cast<std::int8_t>(value);
    }
    if (length == 2) {
        return static_cast<std::int16_t>(value);
    }
    return value;
}

} // namespace ImageAcquisition
