// SPDX-License-Identifier: MIT
#include "session/Error.h"
#include "session/Profile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <initializer_list>
#include <limits>

namespace ImageAcquisition::Session
{

namespace
{

// It keeps the order of the camera's controls.
using Json = nlohmann::ordered_json;

constexpr int version = 1;

/// No camera has so many controls; and each name is looked for among all others.
constexpr std::size_t mostBytes = std::size_t{128} << 10;

[[noreturn]] void failAt(std::string const& place, std::string const& reason)
{
    throw Error({ErrorKind::BadRequest, "read the profile", place + ": " + reason});
}

Json parse(std::string const& text)
{
    if (text.size() > mostBytes) {
        throw Error({ErrorKind::BadRequest, "read the profile", "too large for a profile"});
    }
    try {
        return Json::parse(text);
    } catch (Json::exception const& error) {
        std::string const words = error.what();
        // The library's words begin with a number of its own in brackets.
        std::size_t const end = words.find("] ");
        throw Error({ErrorKind::BadRequest, "read the profile",
                     "no JSON: " + (end == std::string::npos ? words : words.substr(end + 2))});
    }
}

void demandObject(Json const& json, std::string const& place,
                  std::initializer_list<char const*> known)
{
    if (!json.is_object()) {
        failAt(place, "must be an object");
    }
    for (auto const& item : json.items()) {
        if (std::find(known.begin(), known.end(), item.key()) == known.end()) {
            failAt(place == "/" ? "/" + item.key() : place + "/" + item.key(), "is not known");
        }
    }
}

void demandVersion(Json const& json)
{
    auto const found = json.find("version");
    if (found == json.end() || !found->is_number_integer()) {
        failAt("/version", "must be a whole number");
    }
    if (*found != version) {
        failAt("/version", found->dump() + " is not known; this library reads version " +
                               std::to_string(version));
    }
}

std::string textAt(Json const& object, char const* key, std::string const& place)
{
    auto const found = object.find(key);
    if (found == object.end()) {
        return {};
    }
    if (!found->is_string()) {
        failAt(place, "must be a text");
    }
    return found->get<std::string>();
}

/// 0 when it is left out.
unsigned int lengthAt(Json const& object, char const* key)
{
    auto const found = object.find(key);
    if (found == object.end()) {
        return 0;
    }
    std::string const place = std::string("/selection/") + key;
    if (!found->is_number_unsigned() || *found == 0 ||
        *found > std::numeric_limits<unsigned int>::max()) {
        failAt(place, "must be a number of pixels");
    }
    return found->get<unsigned int>();
}

FrameRate rateAt(Json const& object)
{
    std::string const place = "/selection/rate";
    std::string const text = textAt(object, "rate", place);
    if (object.find("rate") == object.end()) {
        return {};
    }
    try {
        Selection const parsed = Selection::parse("@" + text);
        if (parsed.format.empty() && parsed.width == 0) {
            return parsed.rate;
        }
    } catch (Error const&) {
    }
    failAt(place, "'" + text + "' is no frame rate");
}

Selection selectionOf(Json const& json)
{
    demandObject(json, "/selection", {"format", "width", "height", "rate"});
    Selection selection{textAt(json, "format", "/selection/format"), lengthAt(json, "width"),
                        lengthAt(json, "height"), rateAt(json)};
    if ((selection.width == 0) != (selection.height == 0)) {
        failAt("/selection", "has only one of width and height");
    }
    return selection;
}

ControlValue valueOf(Json const& json, std::string const& place)
{
    if (json.is_boolean()) {
        return json.get<bool>();
    }
    if (json.is_string()) {
        return json.get<std::string>();
    }
    bool const fits =
        json.is_number_unsigned()
            ? json.get<unsigned long long>() <=
                  static_cast<unsigned long long>(std::numeric_limits<long long>::max())
            : json.is_number_integer();
    if (!fits) {
        failAt(place, "must be a whole number of 64 bits, a Boolean or a text");
    }
    return json.get<long long>();
}

Json toJson(Selection const& selection)
{
    Json json = Json::object();
    if (!selection.format.empty()) {
        json["format"] = selection.format;
    }
    if (selection.width != 0) {
        json["width"] = selection.width;
        json["height"] = selection.height;
    }
    if (selection.rate.isSaid()) {
        json["rate"] =
            std::to_string(selection.rate.frames) + "/" + std::to_string(selection.rate.seconds);
    }
    return json;
}

} // namespace

Profile Profile::fromJson(std::string const& text)
{
    Json const json = parse(text);
    // The version first: what else there may be depends on it.
    if (!json.is_object()) {
        failAt("/", "must be an object");
    }
    demandVersion(json);
    demandObject(json, "/", {"version", "camera", "selection", "controls"});
    Profile profile;
    profile.m_camera = textAt(json, "camera", "/camera");
    if (json.contains("selection")) {
        profile.m_selection = selectionOf(json["selection"]);
    }
    if (json.contains("controls")) {
        if (!json["controls"].is_object()) {
            failAt("/controls", "must be an object");
        }
        for (auto const& item : json["controls"].items()) {
            profile.m_controls.emplace_back(item.key(),
                                            valueOf(item.value(), "/controls/" + item.key()));
        }
    }
    return profile;
}

std::string Profile::json() const
{
    Json controls = Json::object();
    for (auto const& [name, value] : m_controls) {
        std::visit([&controls, &key = name](auto const& content) { controls[key] = content; },
                   value.content());
    }
    Json json;
    json["version"] = version;
    json["camera"] = m_camera;
    json["selection"] = toJson(m_selection);
    json["controls"] = std::move(controls);
    // A driver's text may be no UTF-8; what is none of it becomes a mark.
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace ImageAcquisition::Session
