// SPDX-License-Identifier: MIT
#include "../CameraSelection.h"
#include "../ControlDescription.h"
#include "../ControlSetting.h"
#include "../Failure.h"
#include "../Output.h"
#include "../TerminalText.h"
#include "Commands.h"

#include <nlohmann/json.hpp>

namespace Iacq
{

void get(std::string const& camera, std::vector<std::string> const& names, bool json)
{
    auto const opened = openCamera(camera);
    nlohmann::ordered_json described = nlohmann::ordered_json::array();
    std::string text;
    for (std::string const& name : names) {
        ImageAcquisition::ICameraControl& control = findControl(opened.interface(), name);
        control.updateState();
        described.push_back(describeControl(control));
        text += printable(control.name()) + ": " + valueText(described.back().at("value")) + "\n";
    }
    print(json ? jsonText(described, 2) + "\n" : text);
}

void set(std::string const& camera, std::vector<std::string> const& assignments)
{
    applyAll(openCamera(camera).interface(), assignments);
}

void reset(std::string const& camera)
{
    auto const opened = openCamera(camera);
    ImageAcquisition::ICamera& device = opened.interface();
    if (!device.device()->isaZorvaneDevice()) {
        throw Failure(CameraFailed, std::string(device.device()->systemName()) +
                                        " is no camera that can be reset");
    }
    if (!device.softwareReset()) {
        throw Failure(CameraFailed, std::string(device.device()->systemName()) +
                                        " was not reset: its USB device cannot be opened");
    }
}

} // namespace Iacq
