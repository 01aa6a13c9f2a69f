// SPDX-License-Identifier: MIT
#include "CameraJson.h"

#include "CameraBuilder.h"
#include "ScriptFields.h"

#include <linux/videodev2.h>

#include <algorithm>
#include <map>
#include <stdexcept>

namespace VirtualCamera
{

namespace
{

ControlScript newControl(JsonReader& reader)
{
    std::uint32_t const type = numberOf(controlTypeNames(), reader.need("type").get<std::string>());
    reader.need("id");
    std::uint32_t id = 0;
    ScriptFields::id(reader, "id", id);
    std::string const name = reader.need("name").get<std::string>();
    switch (type) {
    case V4L2_CTRL_TYPE_BOOLEAN:
        return booleanControl(id, name);
    case V4L2_CTRL_TYPE_BUTTON:
        return buttonControl(id, name);
    case V4L2_CTRL_TYPE_U8:
        return unsigned8Control(id, name);
    case V4L2_CTRL_TYPE_U16:
        return unsigned16Control(id, name);
    case V4L2_CTRL_TYPE_U32:
        return unsigned32Control(id, name);
    default:
        return ControlScript(type, id, name);
    }
}

/// Makes an element that needs a key.
template <typename Script>
struct Required
{
    char const* key;

    Script operator()(JsonReader& reader) const
    {
        reader.need(key);
        return Script{};
    }
};

struct MakeControl
{
    ControlScript operator()(JsonReader& reader) const { return newControl(reader); }
};

template <typename Archive>
void describeUnit(Archive& archive, ExtensionUnitScript& unit)
{
    if constexpr (Archive::reading) {
        archive.need("guid");
    }
    archive.field(
        "guid", unit.guid,
        [](Json const& json) {
            std::vector<std::uint8_t> const bytes = bytesByHex(json.get<std::string>());
            Guid guid{};
            if (bytes.size() != guid.size()) {
                throw std::invalid_argument("a GUID has 16 bytes");
            }
            std::copy(bytes.begin(), bytes.end(), guid.begin());
            return guid;
        },
        [](Guid const& guid) {
            return Json(hexOf(std::vector<std::uint8_t>(guid.begin(), guid.end())));
        });
    archive.list(
        "selectors", unit.selectors, [](auto&) { return SelectorScript{}; },
        [](auto& nested, SelectorScript& value) { ScriptFields::selector(nested, value); });
}

template <typename Archive>
void describeCapabilities(Archive& archive, char const* key, std::optional<std::uint32_t>& value)
{
    archive.field(
        key, value,
        [](Json const& json) {
            return std::optional(ScriptFields::flagsOf(json, capabilityNames()));
        },
        [](std::optional<std::uint32_t> const& bits) {
            return bits ? ScriptFields::flagTexts(*bits, capabilityNames()) : Json();
        });
}

template <typename Archive>
void describeIdentity(Archive& archive, CameraScript& camera)
{
    archive.field("node", camera.node);
    archive.field("name", camera.card);
    archive.field("driver", camera.driver);
    archive.field(
        "driverVersion", camera.driverVersion,
        [](Json const& json) { return versionByText(json.get<std::string>()); },
        [](std::uint32_t version) {
            return Json(std::to_string(version >> 16) + "." + std::to_string(version >> 8 & 0xff) +
                        "." + std::to_string(version & 0xff));
        });
    archive.field("busInfo", camera.busInfo);
    describeCapabilities(archive, "capabilities", camera.capabilities);
    describeCapabilities(archive, "deviceCapabilities", camera.deviceCapabilities);
}

template <typename Archive>
void describeFormats(Archive& archive, CameraScript& camera)
{
    archive.list("formats", camera.formats, Required<FormatScript>{"pixelFormat"},
                 [](auto& nested, FormatScript& value) { ScriptFields::format(nested, value); });
    ScriptFields::pixelFormat(archive, "currentPixelFormat", camera.currentPixelFormat);
    archive.field("currentWidth", camera.currentWidth);
    archive.field("currentHeight", camera.currentHeight);
    Interval interval = camera.currentInterval.value_or(Interval{0, 0});
    if (Archive::reading || camera.currentInterval) {
        ScriptFields::interval(archive, "currentInterval", interval);
    }
    if (interval.denominator != 0) {
        camera.currentInterval = interval;
    }
}

template <typename Archive>
void describeControls(Archive& archive, CameraScript& camera)
{
    archive.list("controls", camera.controls, MakeControl{},
                 [](auto& nested, ControlScript& value) { ScriptFields::control(nested, value); });
    bool headings = false;
    archive.field("classHeadings", headings);
    if (headings) {
        camera = CameraBuilder(std::move(camera)).withClassHeadings().script();
    }
    ExtensionUnitScript unit = camera.extensionUnit.value_or(ExtensionUnitScript{});
    if (Archive::reading || camera.extensionUnit) {
        archive.object("extensionUnit", unit, [](auto& nested, ExtensionUnitScript& value) {
            describeUnit(nested, value);
        });
    }
    if (!unit.selectors.empty()) {
        camera.extensionUnit = unit;
    }
    archive.field("nextControl", camera.nextControlSupported);
    std::uint32_t stuck = camera.stuckControlId.value_or(0);
    ScriptFields::id(archive, "stuckControlEnumerationAt", stuck);
    if (stuck != 0) {
        camera.stuckControlId = stuck;
    }
    archive.field("plainPrivateControls", camera.privateControlsPlain);
}

template <typename Archive>
void describeStreaming(Archive& archive, CameraScript& camera)
{
    archive.field("mmap", camera.mmapOffered);
    archive.field("userPointers", camera.userPointersOffered);
    archive.field("read", camera.readOffered);
    archive.field("mostBuffers", camera.mostBuffers);
    archive.field("fewestBuffers", camera.fewestBuffers);
    ScriptFields::enumeration(archive, "pace", camera.pace, paceNames());
    archive.field("stillPattern", camera.stillPattern);
    archive.list("faults", camera.faults, Required<Fault>{"errno"},
                 [](auto& nested, Fault& value) { ScriptFields::fault(nested, value); });
    archive.list(
        "frameFaults", camera.frameFaults, [](auto&) { return FrameFault{}; },
        [](auto& nested, FrameFault& value) { ScriptFields::frameFault(nested, value); });
    archive.field("vanishingFrame", camera.vanishingFrame);
    archive.field("presenceFile", camera.presenceFile);
}

template <typename Archive>
void describeCamera(Archive& archive, CameraScript& camera)
{
    describeIdentity(archive, camera);
    describeFormats(archive, camera);
    describeControls(archive, camera);
    describeStreaming(archive, camera);
}

struct Configuration
{
    std::vector<CameraScript> cameras;
    std::vector<std::size_t> unnamed; ///< The places of those whose node is not told.
};

template <typename Archive>
void describeConfiguration(Archive& archive, Configuration& configuration)
{
    archive.list(
        "cameras", configuration.cameras, [](auto&) { return CameraScript{}; },
        [&configuration](auto& nested, CameraScript& camera) {
            if constexpr (std::decay_t<decltype(nested)>::reading) {
                if (!nested.has("node")) {
                    configuration.unnamed.push_back(configuration.cameras.size() - 1);
                }
                // For the testbed around the camera, which reads it from the same file.
                nested.ignore("usb");
            }
            describeCamera(nested, camera);
        });
}

/// Gives the cameras without a node the lowest that no other has.
void nameNodes(Configuration& configuration)
{
    std::map<std::string, std::size_t> owners;
    for (std::size_t place : configuration.unnamed) {
        configuration.cameras[place].node.clear();
    }
    for (std::size_t place = 0; place < configuration.cameras.size(); ++place) {
        std::string const& node = configuration.cameras[place].node;
        if (node.empty()) {
            continue;
        }
        auto const [owner, isNew] = owners.emplace(node, place);
        if (!isNew) {
            throw std::runtime_error("configuration.cameras[" + std::to_string(place) +
                                     "].node: " + node + " is taken by cameras[" +
                                     std::to_string(owner->second) + "]");
        }
    }
    unsigned number = 0;
    for (std::size_t place : configuration.unnamed) {
        std::string& node = configuration.cameras[place].node;
        do {
            node = "/dev/video" + std::to_string(number++);
        } while (owners.count(node) != 0);
    }
}

} // namespace

std::vector<CameraScript> camerasFromJson(std::string const& text)
{
    Configuration configuration;
    try {
        Json const json = Json::parse(text);
        JsonReader reader(json, "configuration");
        describeConfiguration(reader, configuration);
        reader.finish();
        nameNodes(configuration);
    } catch (Json::exception const& failure) {
        throw std::runtime_error(failure.what());
    }
    return configuration.cameras;
}

std::string camerasToJson(std::vector<CameraScript> const& cameras)
{
    Configuration configuration{cameras, {}};
    JsonWriter writer;
    describeConfiguration(writer, configuration);
    return writer.take().dump(2);
}

} // namespace VirtualCamera
