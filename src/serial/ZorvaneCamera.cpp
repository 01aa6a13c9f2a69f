// SPDX-License-Identifier: MIT
#include "serial/ZorvaneCamera.h"

#include "serial/ZorvaneCameraControlBoolean.h"
#include "serial/ZorvaneCameraControlNumeric.h"

namespace ImageAcquisition
{

ZorvaneCamera::ZorvaneCamera(IDevice const* device) : ZorvaneCamera(device, {}) {}

ZorvaneCamera::ZorvaneCamera(IDevice const* device, SerialLink::Limits const& limits)
    : QObject(nullptr), Camera(device), m_link(this, limits)
{
}

ZorvaneCamera::~ZorvaneCamera() = default;

LinkReference::LinkReference(ZorvaneCamera* camera)
    : m_link(camera == nullptr ? nullptr : &camera->link())
{
}

bool ZorvaneCamera::init()
{
    bool const linked = initCommunication();
    bool const initialised = Camera::init();
    return linked && initialised;
}

bool ZorvaneCamera::initCommunication()
{
    return m_link.open(*device());
}

void ZorvaneCamera::endCommunication()
{
    m_link.close();
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
