// SPDX-License-Identifier: MIT
#include "../CameraSelection.h"
#include "../ControlDescription.h"
#include "../Failure.h"
#include "../Output.h"
#include "../TerminalText.h"
#include "Commands.h"

#include <IBlockingCamera.h>
#include <ICameraControl.h>
#include <IDevice.h>

#include <nlohmann/json.hpp>

namespace Iacq
{

namespace
{

using namespace ImageAcquisition::Session;

/// That a name is wrong is the user's fault, everything else the camera's.
Failure failureOf(Error const& error)
{
    bool const isName = error.kind() == ErrorKind::NotFound || error.kind() == ErrorKind::Ambiguous;
    return {isName ? BadUsage : CameraFailed, error.what()};
}

bool isControl(Camera const& camera, std::string const& name)
{
    try {
        camera.control(name);
        return true;
    } catch (Error const& error) {
        return error.kind() == ErrorKind::Ambiguous;
    }
}

/// Takes "NAME=VALUE" or "NAME" apart. A control's name may itself hold a "=".
Assignment assignmentOf(Camera const& camera, std::string const& text)
{
    auto const first = text.find('=');
    if (first == std::string::npos || isControl(camera, text)) {
        return {text};
    }
    for (auto equals = first; equals != std::string::npos; equals = text.find('=', equals + 1)) {
        if (isControl(camera, text.substr(0, equals))) {
            return {text.substr(0, equals), text.substr(equals + 1)};
        }
    }
    return {text.substr(0, first), text.substr(first + 1)};
}

} // namespace

void get(std::string const& camera, std::vector<std::string> const& names, bool json)
{
    Camera const opened = openCamera(camera);
    nlohmann::ordered_json described = nlohmann::ordered_json::array();
    std::string text;
    try {
        for (std::string const& name : names) {
            Control const control = opened.control(name);
            interfaceOf(control).updateState();
            described.push_back(describeControl(control));
            text +=
                printable(control.name()) + ": " + valueText(described.back().at("value")) + "\n";
        }
    } catch (Error const& error) {
        throw failureOf(error);
    }
    print(json ? jsonText(described, 2) + "\n" : text);
}

void set(std::string const& camera, std::vector<std::string> const& assignments)
{
    Camera const opened = openCamera(camera);
    std::vector<Assignment> wanted;
    wanted.reserve(assignments.size());
    for (std::string const& text : assignments) {
        wanted.push_back(assignmentOf(opened, text));
    }
    try {
        opened.set(wanted);
    } catch (Error const& error) {
        throw failureOf(error);
    }
}

void reset(std::string const& camera)
{
    Camera const opened = openCamera(camera);
    std::string const node = opened.found().node();
    if (!opened.found().device().isaZorvaneDevice()) {
        throw Failure(CameraFailed, node + " is no camera that can be reset");
    }
    if (!opened.interface().softwareReset()) {
        throw Failure(CameraFailed, node + " was not reset: its USB device cannot be opened");
    }
}

} // namespace Iacq
