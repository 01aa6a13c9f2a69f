// SPDX-License-Identifier: MIT
#include "HostCamera.h"

#include "CameraJson.h"
#include "JsonArchive.h"

#include <algorithm>
#include <utility>

namespace VirtualCamera
{

namespace
{

std::uint16_t revisionByText(std::string const& text)
{
    unsigned major = 0;
    unsigned minor = 0;
    int used = 0;
    int const read = std::sscanf(text.c_str(), "%2x.%2x%n", &major, &minor, &used);
    bool const whole = read == 2 && static_cast<std::size_t>(used) == text.size();
    if (!whole || text.find_first_not_of("0123456789abcdefABCDEF.") != std::string::npos) {
        throw std::invalid_argument("a USB revision is written as \"2.00\", unlike \"" + text +
                                    "\"");
    }
    return static_cast<std::uint16_t>(major << 8 | minor);
}

UsbDeviceScript usbFromJson(Json const& json, std::string const& place, bool& serialPort)
{
    JsonReader reader(json, place);
    UsbDeviceScript script(reader.need("port").get<std::string>());
    reader.field("vendorId", script.vendorId);
    reader.field("productId", script.productId);
    reader.field("manufacturer", script.manufacturer);
    reader.field("product", script.product);
    reader.field("serial", script.serial);
    reader.field(
        "usbRevision", script.usbRevision,
        [](Json const& text) { return revisionByText(text.get<std::string>()); },
        [](std::uint16_t) { return Json(); });
    reader.field("speed", script.speed);
    reader.field("openRefused", script.openRefused);
    std::optional<std::string> firmware;
    reader.field("firmware", firmware);
    if (firmware)
        script.withFirmware(*firmware);
    reader.field("serialPort", serialPort);
    reader.finish();
    return script;
}

} // namespace

std::vector<HostCamera> hostCamerasFromJson(std::string const& text)
{
    std::vector<CameraScript> scripts = camerasFromJson(text);
    Json const json = Json::parse(text);
    std::vector<HostCamera> cameras;
    for (std::size_t index = 0; index < scripts.size(); ++index) {
        Json const& camera = json["cameras"][index];
        std::optional<UsbDeviceScript> usb;
        bool serialPort = false;
        if (camera.contains("usb"))
            usb =
                usbFromJson(camera["usb"],
                            "configuration.cameras[" + std::to_string(index) + "].usb", serialPort);
        auto const samePort = [&usb](HostCamera const& other) {
            return usb && other.usb && other.usb->port == usb->port;
        };
        auto const owner = std::find_if(cameras.begin(), cameras.end(), samePort);
        if (owner != cameras.end())
            owner->nodes.push_back(std::move(scripts[index]));
        else
            cameras.push_back({{std::move(scripts[index])}, std::move(usb), serialPort});
    }
    return cameras;
}

} // namespace VirtualCamera
