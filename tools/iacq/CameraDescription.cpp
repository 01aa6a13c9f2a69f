// SPDX-License-Identifier: MIT
#include "CameraDescription.h"

#include "CurrentSelection.h"

#include <IFramePeriod.h>
#include <IFrameSize.h>
#include <IImageFormat.h>

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

Json describeSize(IFrameSize const& size)
{
    Json intervals = Json::array();
    for (int i = 0; i < size.periodNumber(); ++i) {
        intervals.push_back({{"numerator", size.period(i)->numerator()},
                             {"denominator", size.period(i)->denominator()}});
    }
    return {{"width", size.width()}, {"height", size.height()}, {"intervals", intervals}};
}

Json describeFormat(IImageFormat const& format)
{
    Json sizes = Json::array();
    for (int i = 0; i < format.sizeNumber(); ++i) {
        sizes.push_back(describeSize(*format.frameSize(i)));
    }
    return {{"name", format.name()},
            {"description", format.description()},
            {"compressed", format.isCompressed()},
            {"emulated", format.isEmulated()},
            {"sizes", sizes}};
}

} // namespace

Json describeDevice(IDevice const& device, int index)
{
    return {{"index", index},
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

Json describeFormats(ICamera const& camera)
{
    Json formats = Json::array();
    for (int i = 0; i < camera.formatNumber(); ++i) {
        formats.push_back(describeFormat(*camera.format(i)));
    }
    CurrentSelection const current = currentSelection(camera);
    Json selection = {{"format", nullptr}, {"size", nullptr}, {"interval", nullptr}};
    if (!current.format->isInvalid()) {
        selection["format"] = current.format->name();
    }
    if (!current.size->isInvalid()) {
        selection["size"] = {{"width", current.size->width()}, {"height", current.size->height()}};
    }
    if (!current.period->isInvalid()) {
        selection["interval"] = {{"numerator", current.period->numerator()},
                                 {"denominator", current.period->denominator()}};
    }
    return {{"current", selection}, {"formats", formats}};
}

} // namespace Iacq
