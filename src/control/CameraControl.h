// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControl.h"
#include "system/VideoNode.h"

#include <linux/videodev2.h>

#include <string>

namespace ImageAcquisition
{

/// One V4L2 control of one open camera: its particulars, its flags, and the raw transfers that all
/// typed controls read and write their values with.
class CameraControl : public virtual ICameraControl
{
public:
    /// The camera, which stands for its node, must outlive the control. A null name counts as
    /// empty.
    CameraControl(Type type, NodeReference node, unsigned int id, char const* name);
    CameraControl(CameraControl const&) = delete;
    CameraControl& operator=(CameraControl const&) = delete;

    unsigned int id() const override { return m_id; }
    Type type() const override { return m_type; }
    Family family() const override { return m_family; }
    char const* name() const override { return m_name.c_str(); }
    char const* typeString() const override;
    char const* familyString() const override;
    bool isDisabled() const override { return hasFlag(V4L2_CTRL_FLAG_DISABLED); }
    bool isGrabbed() const override { return hasFlag(V4L2_CTRL_FLAG_GRABBED); }
    bool isReadOnly() const override { return hasFlag(V4L2_CTRL_FLAG_READ_ONLY); }
    bool needsClassUpdate() const override { return hasFlag(V4L2_CTRL_FLAG_UPDATE); }
    bool isInactive() const override { return hasFlag(V4L2_CTRL_FLAG_INACTIVE); }
    bool bestAsSlider() const override { return hasFlag(V4L2_CTRL_FLAG_SLIDER); }
    bool isWriteOnly() const override { return hasFlag(V4L2_CTRL_FLAG_WRITE_ONLY); }
    bool isVolatile() const override { return hasFlag(V4L2_CTRL_FLAG_VOLATILE); }
    bool hasPayload() const override { return hasFlag(V4L2_CTRL_FLAG_HAS_PAYLOAD); }
    bool executesOnWrite() const override { return hasFlag(V4L2_CTRL_FLAG_EXECUTE_ON_WRITE); }
    bool updateState() override;

    /// Takes over what the driver's record says; called once. Subclasses call it first.
    virtual void init(v4l2_queryctrl const& qc);

    /// The value by an extended call; 0 when the read fails.
    virtual long long inquireControlValueExt() const;

    /// The value by a plain call; 0 when the read fails.
    virtual int inquireControlValue() const;

    /// Sends a value by a plain call.
    bool setControlValue(int value);

    /// Sends a value by an extended call.
    bool setControlValueExt(long long value);

    int fileDescriptor() const { return m_node.descriptor(); }

    /// Takes over the driver's present flags; keeps the old ones when it does not answer.
    void updateFlags();

    /// Sets the family that the id belongs to.
    void setFamily(unsigned int id);

    static char const* familyString(Family family);

protected:
    NodeReference node() const { return m_node; }

    /// Whether the flags refuse a write at present. The driver is not asked.
    bool refusesWrites() const;

    /// A record for an extended transfer, zero in all its bytes.
    static v4l2_ext_control emptyExt();

    /// A transfer of one control by extended calls; the result is the ioctl's. Reads name the
    /// control's class and writes do not, which drivers accept either way.
    int readExt(v4l2_ext_control& control) const;
    int writeExt(v4l2_ext_control& control) const;

private:
    bool hasFlag(unsigned int flag) const { return (m_flags & flag) != 0; }

    Type const m_type;
    NodeReference const m_node;
    unsigned int const m_id;
    std::string const m_name;
    unsigned int m_flags = 0;
    Family m_family = Unknown;
};

} // namespace ImageAcquisition
