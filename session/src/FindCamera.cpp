// SPDX-License-Identifier: MIT
#include "Names.h"
#include "NodeName.h"
#include "NodeWalk.h"
#include "Parsing.h"
#include "SystemFailure.h"
#include "session/Error.h"
#include "session/Found.h"

namespace ImageAcquisition::Session
{

namespace
{

constexpr char devDirectory[] = "/dev/";

/// One way to tell cameras apart.
struct Feature
{
    char const* prefix;
    bool (*fits)(Found const& camera, std::string const& text);
};

// In the order in which a text without a prefix is tried.
Feature const features[] = {
    {"serial:", [](Found const& camera,
                   std::string const& text) { return !text.empty() && camera.serial() == text; }},
    {"port:", [](Found const& camera,
                 std::string const& text) { return !text.empty() && camera.port() == text; }},
    {"name:", [](Found const& camera, std::string const& text) { return camera.name() == text; }},
    {"id:", [](Found const& camera, std::string const& text) {
         return equalIgnoringCase(camera.id(), text);
     }}};

std::string operationOf(std::string const& text)
{
    return "find camera '" + text + "'";
}

[[noreturn]] void throwLeftOut(std::string const& text, LeftOut const& node)
{
    ErrorKind const opening = kindOf(node.systemError);
    bool const isThere = node.why == LeftOut::Why::NotOpened && opening != ErrorKind::Unplugged;
    ErrorKind const kind = node.why == LeftOut::Why::NoUsbDevice ? ErrorKind::Unsupported
                           : isThere                             ? opening
                                                                 : ErrorKind::NotFound;
    throw Error({kind, operationOf(text), node.reason, node.node, node.systemError,
                 kind == ErrorKind::Busy ? holdersOf(node.node) : ""});
}

std::string listed(std::vector<Found> const& cameras)
{
    std::string text;
    for (Found const& camera : cameras) {
        text += (text.empty() ? "" : ", ") + camera.description();
    }
    return text;
}

/// Without the nodes that stand beside cameras and never capture: nobody means those.
std::string listed(CameraList const& list)
{
    std::string leftOut;
    for (LeftOut const& node : list.leftOut) {
        if (node.why != LeftOut::Why::NoCapture) {
            leftOut += (leftOut.empty() ? "left out: " : ", ") + node.node + " " + node.reason;
        }
    }
    std::string const cameras =
        list.cameras.empty() ? "there is none" : "there are " + listed(list.cameras);
    return leftOut.empty() ? cameras : cameras + "; " + leftOut;
}

[[noreturn]] void throwAmbiguous(std::string const& text, std::vector<Found> const& matches)
{
    throw Error(
        {ErrorKind::Ambiguous, operationOf(text), "several cameras fit: " + listed(matches)});
}

std::vector<Found> matching(CameraList const& list, Feature const& feature, std::string const& text)
{
    std::vector<Found> matches;
    for (Found const& camera : list.cameras) {
        if (feature.fits(camera, text)) {
            matches.push_back(camera);
        }
    }
    return matches;
}

/// The cameras that fit by the feature that the text names, or else by the first that fits any.
std::vector<Found> matching(CameraList const& list, std::string const& text)
{
    for (Feature const& feature : features) {
        if (startsWith(text, feature.prefix)) {
            return matching(list, feature, text.substr(std::string(feature.prefix).size()));
        }
    }
    for (Feature const& feature : features) {
        std::vector<Found> matches = matching(list, feature, text);
        if (!matches.empty()) {
            return matches;
        }
    }
    return {};
}

Found findNode(std::string const& text, std::string const& name, CameraList const& list)
{
    std::string const node = devDirectory + name;
    for (Found const& camera : list.cameras) {
        if (camera.node() == node) {
            return camera;
        }
    }
    for (LeftOut const& leftOut : list.leftOut) {
        if (leftOut.node == node) {
            throwLeftOut(text, leftOut);
        }
    }
    throw Error({ErrorKind::NotFound, operationOf(text), "there is no such node", node});
}

void checkText(std::string const& text)
{
    if (text.empty()) {
        throw Error({ErrorKind::BadRequest, operationOf(text),
                     "an empty text means no camera; give an index, a node, serial:, port:, name: "
                     "or id:"});
    }
    if (startsWith(text, "id:") && text.find(':', 3) == std::string::npos) {
        throw Error(
            {ErrorKind::BadRequest, operationOf(text), "USB ids are given like id:7a76:ca01"});
    }
    if (nodeName(text).empty() && text.find('/') != std::string::npos && text.front() == '/') {
        throw Error({ErrorKind::NotFound, operationOf(text), "that is no video node"});
    }
}

} // namespace

CameraList findCameras()
{
    return NodeWalk().all();
}

Found findCamera(std::string const& text, CameraList const& list)
{
    checkText(text);
    if (auto const index = parseCount(text); index && *index < list.cameras.size()) {
        return list.cameras[*index];
    }
    if (std::string const node = nodeName(text); !node.empty()) {
        return findNode(text, node, list);
    }
    std::vector<Found> const matches = matching(list, text);
    if (matches.size() > 1) {
        throwAmbiguous(text, matches);
    }
    if (matches.empty()) {
        throw Error(
            {ErrorKind::NotFound, operationOf(text), "no camera fits", "", 0, listed(list)});
    }
    return matches.front();
}

Found findCamera(std::string const& text)
{
    checkText(text);
    std::string const node = nodeName(text);
    if (node.empty()) {
        return findCamera(text, findCameras());
    }
    // Other nodes are not even opened: that may act on them.
    auto described = NodeWalk().describe(node, 0);
    if (auto const* const leftOut = std::get_if<LeftOut>(&described)) {
        throwLeftOut(text, *leftOut);
    }
    return std::get<Found>(std::move(described));
}

} // namespace ImageAcquisition::Session
