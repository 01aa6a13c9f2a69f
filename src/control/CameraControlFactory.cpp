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
std::unique_ptr<CameraControl> make(NodeReference node, v4l2_queryctrl const& qc)
{
    return std::make_unique<Control>(node, qc.id, kernelText(qc.name).c_str());
}

std::unique_ptr<CameraControl> makeByType(NodeReference node, v4l2_queryctrl const& qc)
{
    switch (qc.type) {
    case V4L2_CTRL_TYPE_INTEGER:
        return make<CameraControlNumeric<int>>(node, qc);
    case V4L2_CTRL_TYPE_BOOLEAN:
        return make<CameraControlBoolean>(node, qc);
    case V4L2_CTRL_TYPE_MENU:
        return make<CameraControlStringMenu>(node, qc);
    case V4L2_CTRL_TYPE_BUTTON:
        return make<CameraControlButton>(node, qc);
    case V4L2_CTRL_TYPE_INTEGER64:
        return make<CameraControlNumeric<long long>>(node, qc);
    case V4L2_CTRL_TYPE_STRING:
        return make<CameraControlString>(node, qc);
    case V4L2_CTRL_TYPE_BITMASK:
        return make<CameraControlBitMask>(node, qc);
    case V4L2_CTRL_TYPE_INTEGER_MENU:
        return make<CameraControlInt64Menu>(node, qc);
    case V4L2_CTRL_TYPE_U8:
        return make<CameraControlNumeric<unsigned char>>(node, qc);
    case V4L2_CTRL_TYPE_U16:
    case V4L2_CTRL_TYPE_U32: // Cut to 16 bits. Kept as it is: docs/behaviour.md, Controls.
        return make<CameraControlNumeric<unsigned short>>(node, qc);
    default:
        return nullptr;
    }
}

} // namespace

ICameraControl* CameraControlFactory::createControl(NodeReference node, v4l2_queryctrl const& qc)
{
    std::unique_ptr<CameraControl> control = makeByType(node, qc);
    if (control) {
        control->init(qc);
    }
    return control.release();
}

ICameraControl* CameraControlFactory::createInvalidControl(NodeReference node)
{
    return new CameraControlInvalid(node);
}

} // namespace ImageAcquisition
