// SPDX-License-Identifier: MIT
#include "../CameraSelection.h"
#include "../ControlDescription.h"
#include "../ControlSetting.h"
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
    applyAll(openCamera(camera).interface(), assignments);
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
