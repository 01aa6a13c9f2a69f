// SPDX-License-Identifier: MIT
#include "control/CameraControlFactory.h"

#include "control/CameraControlBitMask.h"
#include "control/CameraControlBoolean.h"
#include "control/CameraControlButton.h"
#include "control/CameraControlInt64Menu.h"
#include "control/CameraControlInvalid.h"
#include "control/CameraControlNumeric.h"
#include "control/CameraControlString.h"
#include "control/CameraControlStringMenu.h"
#include "system/KernelText.h"

#include <memory>

namespace ImageAcquisition
{

namespace
{

template <typename Control>
std::unique_ptr<CameraControl> make(Camera& camera, v4l2_queryctrl const& qc)
{
    return std::make_unique<Control>(camera, qc.id, kernelText(qc.name).c_str());
}

std::unique_ptr<CameraControl> makeByType(Camera& camera, v4l2_queryctrl const& qc)
{
    switch (qc.type) {
    case V4L2_CTRL_TYPE_INTEGER:
        return make<CameraControlNumeric<int>>(camera, qc);
    case V4L2_CTRL_TYPE_BOOLEAN:
        return make<CameraControlBoolean>(camera, qc);
    case V4L2_CTRL_TYPE_MENU:
        return make<CameraControlStringMenu>(camera, qc);
    case V4L2_CTRL_TYPE_BUTTON:
        return make<CameraControlButton>(camera, qc);
    case V4L2_CTRL_TYPE_INTEGER64:
        return make<CameraControlNumeric<long long>>(camera, qc);
    case V4L2_CTRL_TYPE_STRING:
        return make<CameraControlString>(camera, qc);
    case V4L2_CTRL_TYPE_BITMASK:
        return make<CameraControlBitMask>(camera, qc);
    case V4L2_CTRL_TYPE_INTEGER_MENU:
        return make<CameraControlInt64Menu>(camera, qc);
    case V4L2_CTRL_TYPE_U8:
        return make<CameraControlNumeric<unsigned char>>(camera, qc);
    case V4L2_CTRL_TYPE_U16:
    case V4L2_CTRL_TYPE_U32: // Programs count on 16 bits here; wider ranges are cut.
        return make<CameraControlNumeric<unsigned short>>(camera, qc);
    default:
        return nullptr;
    }
}

} // namespace

ICameraControl* CameraControlFactory::createControl(Camera& camera, v4l2_queryctrl const& qc)
{
    std::unique_ptr<CameraControl> control = makeByType(camera, qc);
    if (control) {
        control->init(qc);
    }
    return control.release();
}

ICameraControl* CameraControlFactory::createInvalidControl(Camera& camera)
{
    return new CameraControlInvalid(camera);
}

} // namespace ImageAcquisition
