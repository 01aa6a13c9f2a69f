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

[[noreturn]] void refuse(const std::string& why)
{
    throw std::invalid_argument(why);
}

unsigned parseNumber(const std::string& text, int base, unsigned limit)
{
    std::size_t used = 0;
    unsigned long value = 0;
    try {
        value = std::stoul(text, &used, base);
    } catch (const std::logic_error&) {
        used = 0;
    }
    if (used == 0 || used != text.size() || value > limit) {
        refuse("not a number, or too large: " + text);
    }
    return static_cast<unsigned>(value);
}

std::uint16_t parseWord(const std::string& text)
{
    return static_cast<std::uint16_t>(parseNumber(text, 16, 0xffff));
}

bool parseSwitch(const std::string& text)
{
    if (text != "yes" && text != "no") {
        refuse("neither yes nor no: " + text);
    }
    return text == "yes";
}

Speed parseSpeed(const std::string& text)
{
    static const std::map<std::string, Speed> speeds{
        {"full", Speed::Full}, {"high", Speed::High}, {"super", Speed::Super}};
    const auto found = speeds.find(text);
    if (found == speeds.end()) {
        refuse("a speed is full, high or super, not " + text);
    }
    return found->second;
}

void setSpeed(CameraModel& model, const std::string& text)
{
    model.speed = parseSpeed(text);
    // A hub believes a device at this speed only with the matching revision.
    model.usbRelease = model.speed == Speed::Super ? 0x0300 : 0x0200;
}

using Setter = std::function<void(CameraModel&, const std::string&)>;

const std::map<std::string, Setter>& setters()
{
    using Model = CameraModel;
    using Text = std::string;
    static const std::map<std::string, Setter> table{
        {"vendor", [](Model& model, const Text& text) { model.vendorId = parseWord(text); }},
        {"product", [](Model& model, const Text& text) { model.productId = parseWord(text); }},
        {"usb", [](Model& model, const Text& text) { model.usbRelease = parseWord(text); }},
        {"release", [](Model& model, const Text& text) { model.deviceRelease = parseWord(text); }},
        {"manufacturer", [](Model& model, const Text& text) { model.manufacturer = text; }},
        {"name", [](Model& model, const Text& text) { model.product = text; }},
        {"serial", [](Model& model, const Text& text) { model.serialNumber = text; }},
        {"firmware", [](Model& model, const Text& text) { model.firmware = firmwareReply(text); }},
        {"firmware-bytes", [](Model& model, const Text& text) { model.firmware = fromHex(text); }},
        {"speed", setSpeed},
        {"controller",
         [](Model& model, const Text& text) { model.controller = parseNumber(text, 10, 7); }},
        {"port", [](Model& model, const Text& text) { model.port = parseNumber(text, 10, 31); }},
        {"extension-unit",
         [](Model& model, const Text& text) { model.hasExtensionUnit = parseSwitch(text); }},
        {"serial-port",
         [](Model& model, const Text& text) { model.hasSerialPort = parseSwitch(text); }},
        {"vendor-requests",
         [](Model& model, const Text& text) { model.answersVendorRequests = parseSwitch(text); }},
        {"reset-delay",
         [](Model& model, const Text& text) {
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

CameraModel vendorCamera(const std::string& kind, const std::string& firmware)
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

CameraModel modelOfKind(const std::string& kind)
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

Bytes firmwareReply(const std::string& text)
{
    Bytes reply(text.begin(), text.end());
    reply.push_back(0);
    return reply;
}

CameraModel parseModel(const std::string& text)
{
    std::istringstream words(text);
    std::string word;
    std::getline(words, word, ',');
    CameraModel model = modelOfKind(word);
    while (std::getline(words, word, ',')) {
        const std::size_t sign = word.find('=');
        const auto setter = setters().find(word.substr(0, sign));
        if (sign == std::string::npos || setter == setters().end()) {
            refuse("a camera has no property " + word);
        }
        setter->second(model, word.substr(sign + 1));
    }
    return model;
}

} // namespace UsbCamera
