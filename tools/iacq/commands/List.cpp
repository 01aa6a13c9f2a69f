// SPDX-License-Identifier: MIT
#include "../CameraDescription.h"
#include "../CameraSelection.h"
#include "../Output.h"
#include "../TerminalText.h"
#include "Commands.h"

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
    DeviceListPtr const devices = listDevices();
    nlohmann::ordered_json described = nlohmann::ordered_json::array();
    for (int position = 0; position < devices->size(); ++position) {
        described.push_back(describeDevice(*devices->at(position)));
    }
    if (json) {
        print(jsonText(described, 2) + "\n");
        return;
    }
    std::string text;
    for (auto const& device : described) {
        text += lineOf(device);
    }
    print(text.empty() ? "No camera.\n" : text);
}

} // namespace Iacq
