// SPDX-License-Identifier: MIT
#include "control/CameraControl.h"

#include "control/ControlTexts.h"
#include "system/EarlierErrno.h"

#include <cerrno>
#include <cstdio>

namespace ImageAcquisition
{

namespace
{

constexpr unsigned int classMask = 0x0FFF0000;

/// Kernels from 5.15 on list private controls but answer EINVAL to plain transfers of them.
bool wantsExtendedTransfer(unsigned int id, int plainResult)
{
    return plainResult == -1 && errno == EINVAL && id >= V4L2_CID_PRIVATE_BASE;
}

int transferOne(NodeReference node, unsigned long request, unsigned int controlClass,
                v4l2_ext_control& control)
{
    v4l2_ext_controls controls{};
    controls.ctrl_class = controlClass;
    controls.count = 1;
    controls.controls = &control;
    return node.xioctl(request, &controls);
}

} // namespace

ICameraControl::~ICameraControl() = default;

char const* ICameraControl::familyString(Family family)
{
    return CameraControl::familyString(family);
}

CameraControl::CameraControl(Type type, NodeReference node, unsigned int id, char const* name)
    : m_type(type), m_node(node), m_id(id), m_name(name == nullptr ? "" : name)
{
}

char const* CameraControl::typeString() const
{
    return controlTypeText(type());
}

char const* CameraControl::familyString() const
{
    return familyString(family());
}

char const* CameraControl::familyString(Family family)
{
    return controlFamilyText(family);
}

void CameraControl::init(v4l2_queryctrl const& qc)
{
    m_flags = qc.flags;
    setFamily(qc.id);
}

void CameraControl::setFamily(unsigned int id)
{
    m_family = controlFamilyOf(id);
    if (m_family == Unknown) {
        std::fprintf(stderr, "WARNING: Control with id 0x%08x as no family\n", id);
    }
}

bool CameraControl::updateState()
{
    updateFlags();
    return true;
}

void CameraControl::updateFlags()
{
    v4l2_queryctrl query{};
    query.id = id();
    if (m_node.xioctl(VIDIOC_QUERYCTRL, &query) != -1) {
        m_flags = query.flags;
    }
}

bool CameraControl::refusesWrites() const
{
    return isReadOnly() || isDisabled() || isInactive() || isGrabbed();
}

int CameraControl::inquireControlValue() const
{
    EarlierErrno const earlier;
    v4l2_control control{};
    control.id = id();
    int const result = m_node.xioctl(VIDIOC_G_CTRL, &control);
    if (!wantsExtendedTransfer(id(), result)) {
        return control.value;
    }
    v4l2_ext_control extended = emptyExt();
    earlier.unlessFailed(readExt(extended));
    return extended.value;
}

bool CameraControl::setControlValue(int value)
{
    EarlierErrno const earlier;
    v4l2_control control{};
    control.id = id();
    control.value = value;
    int const result = m_node.xioctl(VIDIOC_S_CTRL, &control);
    if (!wantsExtendedTransfer(id(), result)) {
        return result == 0;
    }
    v4l2_ext_control extended = emptyExt();
    extended.value = value;
    return earlier.unlessFailed(writeExt(extended)) == 0;
}

long long CameraControl::inquireControlValueExt() const
{
    v4l2_ext_control control = emptyExt();
    readExt(control);
    return control.value64;
}

bool CameraControl::setControlValueExt(long long value)
{
    v4l2_ext_control control = emptyExt();
    control.value64 = value;
    return writeExt(control) == 0;
}

v4l2_ext_control CameraControl::emptyExt()
{
    v4l2_ext_control control{};
    // Braces need not clear more than the union's first, 32-bit member.
    control.value64 = 0;
    return control;
}

int CameraControl::readExt(v4l2_ext_control& control) const
{
    control.id = id();
    return transferOne(m_node, VIDIOC_G_EXT_CTRLS, id() & classMask, control);
}

int CameraControl::writeExt(v4l2_ext_control& control) const
{
    control.id = id();
    return transferOne(m_node, VIDIOC_S_EXT_CTRLS, 0, control);
}

} // namespace ImageAcquisition
