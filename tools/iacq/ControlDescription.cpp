// SPDX-License-Identifier: MIT
#include "ControlDescription.h"

#include "TerminalText.h"
#include <session/Control.h>

#include <ICameraControlBitMask.h>
#include <ICameraControlBoolean.h>
#include <ICameraControlInt64Menu.h>
#include <ICameraControlNumeric.h>
#include <ICameraControlString.h>
#include <ICameraControlStringMenu.h>

#include <nlohmann/json.hpp>

#include <vector>

namespace Iacq
{

using ImageAcquisition::Session::shortName;

namespace
{

using ImageAcquisition::ICameraControl;
using ImageAcquisition::ICameraControlBitMask;
using ImageAcquisition::ICameraControlBoolean;
using ImageAcquisition::ICameraControlInt64Menu;
using ImageAcquisition::ICameraControlNumeric;
using ImageAcquisition::ICameraControlString;
using ImageAcquisition::ICameraControlStringMenu;
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

template <typename T>
bool describeNumeric(ICameraControl const& control, Json& json)
{
    auto const* const numeric = dynamic_cast<ICameraControlNumeric<T> const*>(&control);
    if (numeric == nullptr) {
        return false;
    }
    json["minimum"] = numeric->minimum();
    json["maximum"] = numeric->maximum();
    json["step"] = numeric->step();
    return true;
}

void describeMenu(ICameraControlStringMenu const& menu, Json& json)
{
    Json items = Json::array();
    for (int position = 0; position < menu.count(); ++position) {
        items.push_back(menu.string(position));
    }
    json["items"] = items;
    json["default"] = menu.defaultIndex();
}

void describeType(ICameraControl const& control, Json& json)
{
    if (describeNumeric<int>(control, json) || describeNumeric<long long>(control, json) ||
        describeNumeric<unsigned char>(control, json) ||
        describeNumeric<unsigned short>(control, json) ||
        describeNumeric<unsigned int>(control, json)) {
        return;
    }
    if (auto const* const boolean = dynamic_cast<ICameraControlBoolean const*>(&control)) {
        json["default"] = boolean->defaultValue();
    } else if (auto const* const mask = dynamic_cast<ICameraControlBitMask const*>(&control)) {
        json["default"] = mask->defaultValue();
    } else if (auto const* const menu = dynamic_cast<ICameraControlStringMenu const*>(&control)) {
        describeMenu(*menu, json);
    } else if (auto const* const numbers = dynamic_cast<ICameraControlInt64Menu const*>(&control)) {
        json["default"] = numbers->defaultIndex();
    } else if (auto const* const string = dynamic_cast<ICameraControlString const*>(&control)) {
        json["minimumLength"] = string->minLength();
        json["maximumLength"] = string->maxLength();
    }
}

template <typename T>
bool numericValue(ICameraControl const& control, Json& value)
{
    auto const* const numeric = dynamic_cast<ICameraControlNumeric<T> const*>(&control);
    if (numeric != nullptr) {
        value = numeric->value();
    }
    return numeric != nullptr;
}

Json stringValue(ICameraControlString const& control)
{
    std::vector<char> buffer(std::size_t(control.stringSize()) + 1);
    if (!control.getValue(buffer.data(), static_cast<int>(buffer.size() - 1))) {
        return nullptr;
    }
    return std::string(buffer.data());
}

/// An item by position and label; a value that is no item of the list has position -1.
Json menuValue(ICameraControlStringMenu const& menu)
{
    int const position = menu.currentIndex();
    Json value = {{"position", position}, {"label", nullptr}};
    if (position >= 0) {
        value["label"] = menu.string(position);
    }
    return value;
}

} // namespace

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

Json controlValue(ICameraControl const& control)
{
    Json value = nullptr;
    if (control.isWriteOnly() || numericValue<int>(control, value) ||
        numericValue<long long>(control, value) || numericValue<unsigned char>(control, value) ||
        numericValue<unsigned short>(control, value) ||
        numericValue<unsigned int>(control, value)) {
        return value;
    }
    if (auto const* const boolean = dynamic_cast<ICameraControlBoolean const*>(&control)) {
        value = boolean->value();
    } else if (auto const* const mask = dynamic_cast<ICameraControlBitMask const*>(&control)) {
        value = mask->value();
    } else if (auto const* const menu = dynamic_cast<ICameraControlStringMenu const*>(&control)) {
        value = menuValue(*menu);
    } else if (auto const* const numbers = dynamic_cast<ICameraControlInt64Menu const*>(&control)) {
        value = {{"position", numbers->currentIndex()}, {"label", nullptr}};
    } else if (auto const* const string = dynamic_cast<ICameraControlString const*>(&control)) {
        value = stringValue(*string);
    }
    return value;
}

Json describeControl(ICameraControl const& control)
{
    Json json = {{"name", control.name()},
                 {"shortName", shortName(control.name())},
                 {"id", control.id()},
                 {"type", control.typeString()},
                 {"family", familyName(control.family())},
                 {"familyText", control.familyString()},
                 {"flags", flagsOf(control)}};
    describeType(control, json);
    json["value"] = controlValue(control);
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
