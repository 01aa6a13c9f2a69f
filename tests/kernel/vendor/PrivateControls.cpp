// SPDX-License-Identifier: MIT
#include "PrivateControls.h"

#include <ICameraControlBoolean.h>
#include <ICameraControlNumeric.h>
#include <ICameraControlStringMenu.h>

#include <stdexcept>

using namespace ImageAcquisition;

namespace KernelTest
{

namespace
{

using Numeric = ICameraControlNumeric<int>;

int positionOf(ExpectedMapping const& row, long long value)
{
    for (std::size_t i = 0; i < row.menu.size(); ++i) {
        if (row.menu[i].value == value) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

} // namespace

ICameraControl& controlOf(ICamera const& camera, std::string const& name)
{
    ICameraControl* const control = camera.control(name.c_str());
    if (control == camera.invalidControl()) {
        throw std::runtime_error("the camera has no control " + name);
    }
    return *control;
}

Bytes cameraBytes(EmulatedCameras const& cameras, unsigned unit, unsigned selector)
{
    return UsbCamera::fromHex(
        cameras.command("get " + std::to_string(unit) + " " + std::to_string(selector)));
}

Bytes withNumber(Bytes bytes, unsigned offset, unsigned size, long long number)
{
    for (unsigned i = 0; i < size; ++i) {
        bytes.at(offset + i) = static_cast<std::uint8_t>(number >> (8 * i));
    }
    return bytes;
}

long long valueOf(ICameraControl const& control, ExpectedMapping const& row)
{
    if (auto const* const menu = dynamic_cast<ICameraControlStringMenu const*>(&control)) {
        return row.menu.at(static_cast<std::size_t>(menu->currentIndex())).value;
    }
    if (auto const* const boolean = dynamic_cast<ICameraControlBoolean const*>(&control)) {
        return boolean->value() ? 1 : 0;
    }
    return dynamic_cast<Numeric const&>(control).value();
}

bool setValue(ICameraControl& control, ExpectedMapping const& row, long long value)
{
    if (auto* const menu = dynamic_cast<ICameraControlStringMenu*>(&control)) {
        return menu->setCurrentIndex(positionOf(row, value));
    }
    if (auto* const boolean = dynamic_cast<ICameraControlBoolean*>(&control)) {
        return boolean->setValue(value != 0);
    }
    return dynamic_cast<Numeric&>(control).setValue(static_cast<int>(value));
}

long long otherValue(ICameraControl const& control, ExpectedMapping const& row)
{
    long long const present = valueOf(control, row);
    if (!row.menu.empty()) {
        return present == row.menu.back().value ? row.menu.front().value : row.menu.back().value;
    }
    if (dynamic_cast<ICameraControlBoolean const*>(&control) != nullptr) {
        return 1 - present;
    }
    auto const& number = dynamic_cast<Numeric const&>(control);
    return present == number.minimum() ? number.maximum() : number.minimum();
}

} // namespace KernelTest
