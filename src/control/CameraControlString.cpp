// SPDX-License-Identifier: MIT
#include "control/CameraControlString.h"

#include "system/EarlierErrno.h"

#include <cerrno>
#include <cstring>
#include <vector>

namespace ImageAcquisition
{

ICameraControlString::~ICameraControlString() = default;

CameraControlString::CameraControlString(NodeReference node, unsigned int id, char const* name)
    : CameraControl(String, node, id, name)
{
}

void CameraControlString::init(v4l2_queryctrl const& qc)
{
    CameraControl::init(qc);
    setMinMaxStep(qc.minimum, qc.maximum, qc.step);
}

void CameraControlString::setMinMaxStep(int minimum, int maximum, int step)
{
    m_minLength = minimum;
    m_maxLength = maximum;
    m_step = step;
}

unsigned int CameraControlString::stringSize() const
{
    // With no room at all the driver refuses and tells how much the value needs.
    EarlierErrno const earlier;
    v4l2_ext_control control = emptyExt();
    if (readExt(control) == -1 && errno == ENOSPC) {
        earlier.restore();
    }
    return control.size;
}

bool CameraControlString::getValue(char* buffer, int size) const
{
    if (isWriteOnly() || buffer == nullptr || size < 0) {
        return false;
    }
    v4l2_ext_control control = emptyExt();
    control.size = static_cast<unsigned int>(size);
    control.string = buffer;
    return readExt(control) == 0;
}

bool CameraControlString::setValue(char const* value)
{
    if (refusesWrites() || value == nullptr) {
        return false;
    }
    // A copy, because the driver's interface takes a buffer that may be written to.
    std::vector<char> text(value, value + std::strlen(value) + 1);
    v4l2_ext_control control = emptyExt();
    control.size = static_cast<unsigned int>(text.size());
    control.string = text.data();
    return writeExt(control) == 0;
}

} // namespace ImageAcquisition
