// SPDX-License-Identifier: MIT
#include "../CameraDescription.h"
#include "../Output.h"
#include "../TerminalText.h"
#include "Commands.h"

#include <session/Found.h>

#include <nlohmann/json.hpp>

namespace Iacq
{

namespace
{

std::string lineOf(nlohmann::ordered_json const& device)
{
    auto const text = [&device](char const* key) {
        return printable(device.at(key).get_ref<std::string const&>());
    };
    std::string line = std::to_string(device.at("index").get<int>()) + ": " + text("name") + "\n";
    line += "    node " + text("node") + ", driver " + text("driver") + " " +
            text("driverVersion") + ", bus " + text("bus") + "\n";
    line += "    USB " + text("vendorId") + ":" + text("productId") + ", revision " +
            text("usbRevision") + ", speed " + text("usbSpeed");
    for (char const* const key : {"manufacturer", "serial", "firmware"}) {
        if (!text(key).empty()) {
            line += std::string(", ") + key + " " + text(key);
        }
    }
    return line + "\n";
}

} // namespace

void list(bool json)
{
    using namespace ImageAcquisition::Session;
    CameraList const list = findCameras();
    nlohmann::ordered_json described = nlohmann::ordered_json::array();
    std::string text;
    for (Found const& camera : list.cameras) {
        described.push_back(describeDevice(camera));
        text += lineOf(described.back());
    }
    if (json) {
        text = jsonText(described, 2) + "\n";
    }
    print(text.empty() ? "No camera.\n" : text);
    for (LeftOut const& node : list.leftOut) {
        // Metadata nodes stand beside every camera; they are none that anybody misses.
        if (node.why == LeftOut::Why::NoUsbDevice) {
            tell("left out: " + node.node + " " + node.reason);
        }
    }
}

} // namespace Iacq
