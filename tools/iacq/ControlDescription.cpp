// SPDX-License-Identifier: MIT
#include "ControlDescription.h"

#include "TerminalText.h"

#include <session/Error.h>

#include <ICameraControlBitMask.h>
#include <ICameraControlBoolean.h>
#include <ICameraControlButton.h>
#include <ICameraControlInt64Menu.h>
#include <ICameraControlNumeric.h>
#include <ICameraControlString.h>
#include <ICameraControlStringMenu.h>

#include <nlohmann/json.hpp>

namespace Iacq
{

namespace
{

using namespace ImageAcquisition;
using Json = nlohmann::ordered_json;

Json flagsOf(ICameraControl const& control)
{
    struct Flag
    {
        bool (ICameraControl::*isSet)() const;
        char const* name;
    };
    static constexpr Flag flags[] = {
        {&ICameraControl::isDisabled, "disabled"},
        {&ICameraControl::isGrabbed, "grabbed"},
        {&ICameraControl::isReadOnly, "read-only"},
        {&ICameraControl::needsClassUpdate, "update"},
        {&ICameraControl::isInactive, "inactive"},
        {&ICameraControl::bestAsSlider, "slider"},
        {&ICameraControl::isWriteOnly, "write-only"},
        {&ICameraControl::isVolatile, "volatile"},
        {&ICameraControl::hasPayload, "has-payload"},
        {&ICameraControl::executesOnWrite, "execute-on-write"},
    };
    Json names = Json::array();
    for (Flag const& flag : flags) {
        if ((control.*flag.isSet)()) {
            names.push_back(flag.name);
        }
    }
    return names;
}

/// Adds what only controls of one type have.
struct TypeDescription
{
    template <typename T>
    void operator()(ICameraControlNumeric<T>* numeric) const
    {
        json["minimum"] = numeric->minimum();
        json["maximum"] = numeric->maximum();
        json["step"] = numeric->step();
    }
    void operator()(ICameraControlBoolean* boolean) const
    {
        json["default"] = boolean->defaultValue();
    }
    void operator()(ICameraControlBitMask* mask) const { json["default"] = mask->defaultValue(); }
    void operator()(ICameraControlStringMenu* menu) const
    {
        json["items"] = control.items();
        json["default"] = menu->defaultIndex();
    }
    void operator()(ICameraControlInt64Menu* menu) const { json["default"] = menu->defaultIndex(); }
    void operator()(ICameraControlString* string) const
    {
        json["minimumLength"] = string->minLength();
        json["maximumLength"] = string->maxLength();
    }
    void operator()(void* /*other*/) const {}

    Session::Control const& control;
    Json& json;
};

/// Of a menu the item by position and label; -1 for a value that is no item of the list.
Json valueOf(Session::Control const& control)
{
    bool const isMenu = control.type() == Session::ControlType::Menu;
    try {
        auto const content = control.value().content();
        Json const value = std::visit([](auto const& plain) { return Json(plain); }, content);
        return isMenu ? Json{{"position", control.number()},
                             {"label", value.is_string() ? value : Json()}}
                      : value;
    } catch (Session::Error const& error) {
        if (error.kind() == Session::ErrorKind::Unplugged) {
            throw;
        }
        bool const isReadable = isMenu && !interfaceOf(control).isWriteOnly();
        return isReadable ? Json{{"position", -1}, {"label", nullptr}} : Json();
    }
}

} // namespace

ICameraControl& interfaceOf(Session::Control const& control)
{
    return *std::visit([](auto* typed) -> ICameraControl* { return typed; }, control.typed());
}

char const* familyName(ICameraControl::Family family)
{
    switch (family) {
    case ICameraControl::Focus:
        return "focus";
    case ICameraControl::AutoControl:
        return "auto-control";
    case ICameraControl::ImageGeometry:
        return "image-geometry";
    case ICameraControl::ImageQuality:
        return "image-quality";
    case ICameraControl::Debug:
        return "debug";
    case ICameraControl::Lighting:
        return "lighting";
    case ICameraControl::Connection:
        return "connection";
    case ICameraControl::Status:
        return "status";
    case ICameraControl::Advanced:
        return "advanced";
    case ICameraControl::Unknown:
        break;
    }
    return "unknown";
}

Json describeControl(Session::Control const& control)
{
    ICameraControl const& interface = interfaceOf(control);
    Json json = {{"name", control.name()},
                 {"shortName", control.shortName()},
                 {"id", control.id()},
                 {"type", interface.typeString()},
                 {"family", familyName(interface.family())},
                 {"familyText", interface.familyString()},
                 {"flags", flagsOf(interface)}};
    std::visit(TypeDescription{control, json}, control.typed());
    json["value"] = valueOf(control);
    return json;
}

std::string valueText(Json const& value)
{
    if (value.is_null()) {
        return "-";
    }
    if (value.is_boolean()) {
        return value.get<bool>() ? "on" : "off";
    }
    if (value.is_string()) {
        return printable(value.get_ref<std::string const&>());
    }
    if (value.is_object()) {
        std::string const position = std::to_string(value.at("position").get<int>());
        return value.at("label").is_null()
                   ? position
                   : position + " (" + printable(value.at("label").get_ref<std::string const&>()) +
                         ")";
    }
    return value.dump();
}

} // namespace Iacq
