// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <map>

namespace ImageAcquisition
{

/// Builds the packets by which a camera is asked over its serial port, and reads its replies. A
/// packet is the 8-byte USB SETUP packet of a UVC control request, and for a write the data; a
/// reply is the header of the request followed by the control's data. Has no state.
class UVCStringBuilder
{
public:
    static constexpr int __baseRequestLength = 8;   ///< Bytes of header, in requests and replies.
    static constexpr int __maxLength = 8;           ///< Largest data length.
    static constexpr int __CIDLength = 4;           ///< Hexadecimal digits of the selector.
    static constexpr int __unitLength = 4;          ///< Hexadecimal digits of the unit.
    static constexpr int __lengthRequestLength = 2; ///< Data length of GET_LEN.
    static constexpr int __infoRequestLength = 1;   ///< Data length of GET_INFO.

    /// The UVC selector of each V4L2 control that UVC standardises.
    static std::map<unsigned int, unsigned int> const __idMap;

    // The request type and code of each request, as four hexadecimal digits.
    static QString buildSetString();
    static QString buildGetString();
    static QString buildLengthString();
    static QString buildDefaultValueString();
    static QString buildMinString();
    static QString buildMaxString();
    static QString buildInfoString();

    // At least four hexadecimal digits, padded with zeros.
    static QString buildCIDString(int cid);
    static QString buildUnitString(int unit);

    /// The two lowest bytes, the lowest first.
    static QByteArray buildDataLengthString(int length);

    /// The @p length lowest bytes, the lowest first.
    static QByteArray buildDataString(unsigned long long value, int length);

    /// Puts a field into the value of the control that it is part of. Lengths and offsets are in
    /// bytes; what lies beyond the value's 8 bytes is dropped.
    static unsigned long long buildSharedValue(unsigned long long current, int fieldValue,
                                               int fieldLength, int fieldOffset);

    // Each replaces @p request by the finished packet and returns true.
    static bool buildSetRequest(int cid, int unit, int length, unsigned long long value,
                                QByteArray& request);
    static bool buildGetRequest(int cid, int unit, int length, QByteArray& request);
    static bool buildMinRequest(int cid, int unit, int length, QByteArray& request);
    static bool buildMaxRequest(int cid, int unit, int length, QByteArray& request);
    static bool buildDefaultValueRequest(int cid, int unit, int length, QByteArray& request);
    static bool buildLengthRequest(int cid, int unit, QByteArray& request);
    static bool buildInfoRequest(int cid, int unit, QByteArray& request);

    /**
     * @brief Reads a field of a reply.
     *
     * Values of one and two bytes are sign-extended, longer ones are not.
     * @param reply holds at least 8 + @p offset + @p length bytes; the caller makes sure.
     * @param length bytes of the field; more than 8 end the process.
     * @param offset of the field from the first data byte.
     */
    static long long extractValueFromData(QByteArray const& reply, int length, int offset);
};

} // namespace ImageAcquisition
