// SPDX-License-Identifier: MIT
#include "HostCamera.h"

#include "CameraJson.h"
#include "JsonReader.h"

#include <algorithm>
#include <cctype>
#include <sstream>
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

bool isPortNumber(std::string const& text)
{
    return !text.empty() && text.size() <= 3 && text.front() != '0' &&
           text.find_first_not_of("0123456789") == std::string::npos;
}

bool isPortPath(std::string const& text)
{
    std::size_t const dash = text.find('-');
    if (dash == std::string::npos || dash + 1 == text.size() || text.back() == '.') {
        return false;
    }
    bool good = isPortNumber(text.substr(0, dash));
    std::istringstream path(text.substr(dash + 1));
    for (std::string number; good && std::getline(path, number, '.');) {
        good = isPortNumber(number);
    }
    return good;
}

// The testbed makes files and numbers of it.
std::string portByText(std::string const& text)
{
    if (!isPortPath(text)) {
        throw std::invalid_argument("a port is written as \"1-2.3\", unlike \"" + text + "\"");
    }
    return text;
}

void checkNode(std::string const& node, std::string const& place)
{
    std::string const folder = "/dev/";
    bool const within = node.rfind(folder, 0) == 0 && node.size() > folder.size();
    auto const isOther = [](unsigned char letter) {
        return std::isalnum(letter) == 0 && letter != '_' && letter != '-';
    };
    if (!within || std::any_of(node.begin() + folder.size(), node.end(), isOther)) {
        throw std::runtime_error(place + ".node: a node is written as \"/dev/video0\", unlike \"" +
                                 node + "\"");
    }
}

UsbDeviceScript usbFromJson(Json const& json, std::string const& place, bool& serialPort)
{
    JsonReader reader(json, place);
    reader.need("port");
    UsbDeviceScript script("");
    reader.field(
        "port", script.port, [](Json const& text) { return portByText(text.get<std::string>()); },
        [](std::string const&) { return Json(); });
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
    if (firmware) {
        script.withFirmware(*firmware);
    }
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
        std::string const place = "configuration.cameras[" + std::to_string(index) + "]";
        checkNode(scripts[index].node, place);
        std::optional<UsbDeviceScript> usb;
        bool serialPort = false;
        if (camera.contains("usb")) {
            usb = usbFromJson(camera["usb"], place + ".usb", serialPort);
        }
        auto const samePort = [&usb](HostCamera const& other) {
            return usb && other.usb && other.usb->port == usb->port;
        };
        auto const owner = std::find_if(cameras.begin(), cameras.end(), samePort);
        if (owner != cameras.end()) {
            owner->nodes.push_back(std::move(scripts[index]));
        } else {
            cameras.push_back({{std::move(scripts[index])}, std::move(usb), serialPort});
        }
    }
    return cameras;
}

} // namespace VirtualCamera
