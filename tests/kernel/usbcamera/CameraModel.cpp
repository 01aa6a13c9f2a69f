// SPDX-License-Identifier: MIT
#include "CameraModel.h"

#include <functional>
#include <map>
#include <sstream>
#include <stdexcept>

namespace UsbCamera
{

namespace
{

[[noreturn]] void refuse(std::string const& why)
{
    throw std::invalid_argument(why);
}

unsigned parseNumber(std::string const& text, int base, unsigned limit)
{
    std::size_t used = 0;
    unsigned long value = 0;
    try {
        value = std::stoul(text, &used, base);
    } catch (std::logic_error const&) {
        used = 0;
    }
    if (used == 0 || used != text.size() || value > limit) {
        refuse("not a number, or too large: " + text);
    }
    return static_cast<unsigned>(value);
}

std::uint16_t parseWord(std::string const& text)
{
    return static_cast<std::uint16_t>(parseNumber(text, 16, 0xffff));
}

bool parseSwitch(std::string const& text)
{
    if (text != "yes" && text != "no") {
        refuse("neither yes nor no: " + text);
    }
    return text == "yes";
}

Speed parseSpeed(std::string const& text)
{
    static std::map<std::string, Speed> const speeds{
        {"full", Speed::Full}, {"high", Speed::High}, {"super", Speed::Super}};
    auto const found = speeds.find(text);
    if (found == speeds.end()) {
        refuse("a speed is full, high or super, not " + text);
    }
    return found->second;
}

void setSpeed(CameraModel& model, std::string const& text)
{
    model.speed = parseSpeed(text);
    // A hub believes a device at this speed only with the matching revision.
    model.usbRelease = model.speed == Speed::Super ? 0x0300 : 0x0200;
}

using Setter = std::function<void(CameraModel&, std::string const&)>;

std::map<std::string, Setter> const& setters()
{
    using Model = CameraModel;
    using Text = std::string;
    static std::map<std::string, Setter> const table{
        {"vendor", [](Model& model, Text const& text) { model.vendorId = parseWord(text); }},
        {"product", [](Model& model, Text const& text) { model.productId = parseWord(text); }},
        {"usb", [](Model& model, Text const& text) { model.usbRelease = parseWord(text); }},
        {"release", [](Model& model, Text const& text) { model.deviceRelease = parseWord(text); }},
        {"manufacturer", [](Model& model, Text const& text) { model.manufacturer = text; }},
        {"name", [](Model& model, Text const& text) { model.product = text; }},
        {"serial", [](Model& model, Text const& text) { model.serialNumber = text; }},
        {"firmware", [](Model& model, Text const& text) { model.firmware = firmwareReply(text); }},
        {"firmware-bytes", [](Model& model, Text const& text) { model.firmware = fromHex(text); }},
        {"speed", setSpeed},
        {"controller",
         [](Model& model, Text const& text) { model.controller = parseNumber(text, 10, 7); }},
        {"port", [](Model& model, Text const& text) { model.port = parseNumber(text, 10, 31); }},
        {"extension-unit",
         [](Model& model, Text const& text) { model.hasExtensionUnit = parseSwitch(text); }},
        {"serial-port",
         [](Model& model, Text const& text) { model.hasSerialPort = parseSwitch(text); }},
        {"vendor-requests",
         [](Model& model, Text const& text) { model.answersVendorRequests = parseSwitch(text); }},
        {"interval-ranges",
         [](Model& model, Text const& text) { model.hasIntervalRanges = parseSwitch(text); }},
        {"reset-delay",
         [](Model& model, Text const& text) {
             model.resetDelay = std::chrono::milliseconds(parseNumber(text, 10, 60000));
         }},
    };
    return table;
}

CameraModel ordinaryCamera()
{
    CameraModel model;
    model.kind = "ordinary";
    model.vendorId = 0x1d6b;
    model.productId = 0x0102;
    model.manufacturer = "Emulated";
    model.product = "Ordinary Camera";
    model.serialNumber = "ORD001";
    return model;
}

CameraModel vendorCamera(std::string const& kind, std::string const& firmware)
{
    CameraModel model;
    model.kind = kind;
    model.vendorId = USBCAMERA_VENDOR_ID;
    model.productId = USBCAMERA_PRODUCT_ID;
    model.manufacturer = "Emulated";
    model.product = "Vendor Camera";
    model.serialNumber = "VEN001";
    model.hasExtensionUnit = true;
    model.hasSerialPort = kind == "vendor-new";
    model.answersVendorRequests = true;
    model.firmware = firmwareReply(firmware);
    return model;
}

CameraModel modelOfKind(std::string const& kind)
{
    if (kind == "ordinary") {
        return ordinaryCamera();
    }
    if (kind == "vendor-old") {
        return vendorCamera(kind, "TJ8-1.2.9");
    }
    if (kind == "vendor-new") {
        return vendorCamera(kind, "TJ8-1.3.0");
    }
    refuse("a camera is ordinary, vendor-old or vendor-new, not " + kind);
}

} // namespace

Bytes firmwareReply(std::string const& text)
{
    Bytes reply(text.begin(), text.end());
    reply.push_back(0);
    return reply;
}

CameraModel parseModel(std::string const& text)
{
    std::istringstream words(text);
    std::string word;
    std::getline(words, word, ',');
    CameraModel model = modelOfKind(word);
    while (std::getline(words, word, ',')) {
        std::size_t const sign = word.find('=');
        auto const setter = setters().find(word.substr(0, sign));
        if (sign == std::string::npos || setter == setters().end()) {
            refuse("a camera has no property " + word);
        }
        setter->second(model, word.substr(sign + 1));
    }
    return model;
}

} // namespace UsbCamera
