// SPDX-License-Identifier: MIT
#include "../CameraDescription.h"
#include "../CameraSelection.h"
#include "../ControlDescription.h"
#include "../Output.h"
#include "../TerminalText.h"
#include "Commands.h"

#include <nlohmann/json.hpp>

namespace Iacq
{

namespace
{

using Json = nlohmann::ordered_json;

std::string plain(Json const& text)
{
    return printable(text.get_ref<std::string const&>());
}

struct Wording
{
    char const* key;
    char const* words;
};

/// The fields of a record that are texts, in the words of people.
constexpr Wording fields[] = {{"node", "Node"},
                              {"driver", "Driver"},
                              {"driverVersion", "Driver version"},
                              {"bus", "Bus"},
                              {"vendorId", "Vendor id"},
                              {"productId", "Product id"},
                              {"manufacturer", "Manufacturer"},
                              {"serial", "Serial number"},
                              {"firmware", "Firmware revision"},
                              {"usbRevision", "USB revision"},
                              {"usbSpeed", "USB speed"}};

constexpr Wording abilities[] = {{"videoCapture", "video capture"},
                                 {"multiplane", "multi-planar formats"},
                                 {"streaming", "streaming"},
                                 {"readWrite", "read and write"},
                                 {"asynchIO", "asynchronous I/O"}};

std::string deviceText(Json const& device)
{
    std::string text = plain(device.at("name")) + "\n";
    for (auto const& [key, words] : fields) {
        std::string const value = plain(device.at(key));
        text += value.empty() ? "" : std::string("    ") + words + ": " + value + "\n";
    }
    std::string supported;
    for (auto const& [key, words] : abilities) {
        if (device.at("supports").at(key).get<bool>()) {
            supported += (supported.empty() ? " " : ", ") + std::string(words);
        }
    }
    return text + "    Supports:" + supported + "\n";
}

std::string fraction(Json const& interval)
{
    return interval.at("numerator").dump() + "/" + interval.at("denominator").dump();
}

std::string dimensions(Json const& size)
{
    return size.at("width").dump() + "x" + size.at("height").dump();
}

std::string formatText(Json const& format)
{
    std::string text = "    " + plain(format.at("name")) + "  " + plain(format.at("description"));
    text += format.at("compressed").get<bool>() ? ", compressed" : "";
    text += format.at("emulated").get<bool>() ? ", emulated" : "";
    text += "\n";
    for (Json const& size : format.at("sizes")) {
        text += "        " + dimensions(size) + ":";
        for (Json const& interval : size.at("intervals")) {
            text += " " + fraction(interval);
        }
        text += "\n";
    }
    return text;
}

std::string formatsText(Json const& formats)
{
    Json const& current = formats.at("current");
    std::string text = "Formats (sizes and frame intervals in seconds; current:";
    text += current.at("format").is_null() ? " none of these" : " " + plain(current.at("format"));
    text += current.at("size").is_null() ? "" : " " + dimensions(current.at("size"));
    text += current.at("interval").is_null() ? "" : " " + fraction(current.at("interval"));
    text += ")\n";
    for (Json const& format : formats.at("formats")) {
        text += formatText(format);
    }
    return text;
}

std::string rangeText(Json const& control)
{
    if (control.contains("minimum")) {
        return "  " + control.at("minimum").dump() + ".." + control.at("maximum").dump() +
               " step " + control.at("step").dump();
    }
    if (control.contains("minimumLength")) {
        return "  " + control.at("minimumLength").dump() + ".." +
               control.at("maximumLength").dump() + " characters";
    }
    return "";
}

std::string controlText(Json const& control)
{
    std::string text = "    " + plain(control.at("shortName")) + " ('" + plain(control.at("name")) +
                       "')  " + plain(control.at("type")) + "  " + plain(control.at("family")) +
                       rangeText(control);
    text += control.contains("default") ? "  default " + valueText(control.at("default")) : "";
    text += "  value " + valueText(control.at("value"));
    for (Json const& flag : control.at("flags")) {
        text += "  [" + plain(flag) + "]";
    }
    text += "\n";
    int position = 0;
    for (Json const& item : control.value("items", Json::array())) {
        text += "        " + std::to_string(position++) + ": " + plain(item) + "\n";
    }
    return text;
}

} // namespace

void show(std::string const& camera, bool json)
{
    auto const opened = openCamera(camera);
    Json description = describeDevice(opened.found());
    Json const formats = describeFormats(opened);
    Json controls = Json::array();
    for (auto const& control : opened.controls()) {
        controls.push_back(describeControl(control));
    }
    if (json) {
        description["current"] = formats.at("current");
        description["formats"] = formats.at("formats");
        description["controls"] = controls;
        print(jsonText(description, 2) + "\n");
        return;
    }
    std::string text = deviceText(description) + formatsText(formats) + "Controls\n";
    for (Json const& control : controls) {
        text += controlText(control);
    }
    print(text);
}

} // namespace Iacq
