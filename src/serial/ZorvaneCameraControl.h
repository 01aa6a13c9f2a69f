// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControl.h"
#include "serial/SerialLink.h"

#include <QByteArray>

#include <string>

namespace ImageAcquisition
{

/// One UVC control of a serial-link camera, or one field of a control, reached by requests over
/// the camera's serial port. Every exchange blocks its caller, and waits for those of other
/// threads; the control itself is for one thread at a time.
class ZorvaneCameraControl : public virtual ICameraControl
{
public:
    static constexpr int _msTimeout = SerialLink::msReply;
    static constexpr int _nbRetries = SerialLink::attempts;
    static constexpr int _retryDelay = 50; ///< Not used by the exchange, which does not pause.
    static constexpr int _msDelay = SerialLink::msPause; ///< Also after each query.

    /// The camera, or its link, must outlive the control. A null name counts as empty.
    ZorvaneCameraControl(LinkReference link, char const* name, int selector, int unit,
                         Family family, Type type);
    ZorvaneCameraControl(ZorvaneCameraControl const&) = delete;
    ZorvaneCameraControl& operator=(ZorvaneCameraControl const&) = delete;
    ~ZorvaneCameraControl() override;

    /// The UVC control selector.
    unsigned int id() const override { return static_cast<unsigned int>(m_selector); }
    Type type() const override { return m_type; }
    Family family() const override { return m_family; }
    char const* name() const override { return m_name.c_str(); }
    char const* typeString() const override;
    char const* familyString() const override;
    bool isDisabled() const override { return false; }
    bool isGrabbed() const override { return false; }
    bool isReadOnly() const override;
    bool needsClassUpdate() const override;
    bool isInactive() const override { return false; }
    bool bestAsSlider() const override { return false; }
    bool isWriteOnly() const override;
    bool isVolatile() const override { return false; }
    bool hasPayload() const override { return true; }
    bool executesOnWrite() const override { return true; }
    bool updateState() override;

    /// Asks for the data length and the flags. True when both were answered.
    virtual bool init();

    /// Makes it a field of a larger control. Both in bytes; comes before init().
    void setShared(int offset, int length);

    // The exchanges. Each is true on success.
    bool initControlLength();
    bool initFlags();
    /// Not part of init(): the default value stays -1 unless somebody asks for it here.
    bool initDefaultValue();
    bool getMinimum(int& minimum);
    bool getMaximum(int& maximum);
    /// The whole control; on failure @p value is the value last written.
    bool getControlValue(long long& value) const;
    /// Writes the whole control. The value counts as current even when the camera did not take it.
    bool setControlValue(int value);
    /// One field; untouched on failure.
    bool getSharedControlValue(long long& value, int offset, int length) const;
    /// Reads the whole control, puts the field in, and writes it back.
    bool setSharedControlValue(int value, int offset, int length);

    /// One exchange over the link; false without one.
    bool sendCommand(QByteArray const& request, int dataLength, QByteArray& reply) const;

    int dataLength() const { return m_dataLength; }

protected:
    int currentValue() const { return m_currentValue; }
    int defaultValueNumber() const { return m_defaultValue; }
    int fallbackValue() const { return m_fallbackValue; }
    bool isShared() const { return m_shared; }

    /// Reads the field, or the whole control when it is not shared.
    bool readValue(long long& value) const;

    /// Writes the field, or the whole control when it is not shared; also the whole control when
    /// the field could not be written. A value that was taken counts as current.
    bool writeValue(int value);

private:
    using RequestBuilder = bool (*)(int cid, int unit, int length, QByteArray& request);

    /// Whether requests for data of this control can be sent at all: neither its length nor its
    /// field may lead outside the 8 bytes of a value.
    bool hasUsableLayout() const;
    bool fieldLiesWithinData(int offset, int length) const;
    bool exchange(RequestBuilder build, QByteArray& reply) const;
    bool queryValue(RequestBuilder build, long long& value) const;
    bool sendWhole(unsigned long long value) const;

    int m_currentValue = -1;
    int m_defaultValue = -1;
    int m_fallbackValue = -1;
    int m_infoFlags = 0;
    SerialLink* m_link;
    int m_dataLength = 0;
    bool m_shared = false;
    int m_sharedLength = 0;
    int m_sharedOffset = 0;
    int m_selector;
    int m_unit;
    std::string m_name;
    Family m_family;
    Type m_type;
};

} // namespace ImageAcquisition
