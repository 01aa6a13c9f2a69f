// SPDX-License-Identifier: MIT
#include "CameraDescription.h"

#include <IDevice.h>

#include <nlohmann/json.hpp>

#include <cstdio>

namespace Iacq
{

namespace
{

using namespace ImageAcquisition;
using Json = nlohmann::ordered_json;

char const* speedName(UsbSpeed speed)
{
    static constexpr char const* names[] = {"unknown", "low", "full", "high", "super"};
    return speed >= UsbSpeedUnknown && speed <= UsbSpeedSuper ? names[speed] : names[0];
}

std::string revisionText(unsigned short revision)
{
    char text[16];
    std::snprintf(text, sizeof text, "%x.%02x", revision >> 8, revision & 0xff);
    return text;
}

Json describeInterval(Session::FrameRate rate)
{
    return {{"numerator", rate.seconds}, {"denominator", rate.frames}};
}

Json describeFormat(Session::FormatOffer const& format)
{
    Json sizes = Json::array();
    for (Session::SizeOffer const& size : format.sizes) {
        Json intervals = Json::array();
        for (Session::FrameRate const rate : size.rates) {
            intervals.push_back(describeInterval(rate));
        }
        // What is listed. Of ranges, a selection that they do not hold is told what they are.
        if (!size.isRange()) {
            sizes.push_back({{"width", size.width.minimum},
                             {"height", size.height.minimum},
                             {"intervals", size.anyRate ? Json::array() : intervals}});
        }
    }
    return {{"name", format.format},
            {"description", format.description},
            {"compressed", format.compressed},
            {"emulated", format.emulated},
            {"sizes", sizes}};
}

} // namespace

Json describeDevice(Session::Found const& camera)
{
    IDevice const& device = camera.device();
    return {{"index", camera.index()},
            {"node", device.systemName()},
            {"name", device.name()},
            {"driver", device.driverName()},
            {"driverVersion", device.driverVersion()},
            {"bus", device.busInfo()},
            {"vendorId", device.vendorId()},
            {"productId", device.productId()},
            {"manufacturer", device.manufacturer()},
            {"serial", device.serial()},
            {"firmware", device.firmwareVersion()},
            {"vendorsOwn", device.isaZorvaneDevice()},
            {"usbRevision", revisionText(device.usbRevision())},
            {"usbSpeed", speedName(device.usbSpeed())},
            {"supports",
             {{"videoCapture", device.supportsVideoCapture()},
              {"multiplane", device.supportsMultiplane()},
              {"streaming", device.supportsStreaming()},
              {"readWrite", device.supportsReadWrite()},
              {"asynchIO", device.supportsAsynchIO()}}}};
}

Json describeFormats(Session::Camera const& camera)
{
    Json formats = Json::array();
    for (Session::FormatOffer const& format : camera.offers()) {
        formats.push_back(describeFormat(format));
    }
    Session::Selection const set = camera.selection();
    Json current = {{"format", nullptr}, {"size", nullptr}, {"interval", nullptr}};
    if (!set.format.empty()) {
        current["format"] = set.format;
        current["size"] = {{"width", set.width}, {"height", set.height}};
    }
    if (set.rate.isSaid()) {
        current["interval"] = describeInterval(set.rate);
    }
    return {{"current", current}, {"formats", formats}};
}

} // namespace Iacq
