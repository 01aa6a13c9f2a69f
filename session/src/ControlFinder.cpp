// SPDX-License-Identifier: MIT
#include "ControlFinder.h"

#include "session/Error.h"

#include <ICameraControl.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <utility>

namespace ImageAcquisition::Session
{

namespace
{

struct Purpose
{
    char const* name;
    ICameraControl* (ICamera::*control)() const;
};

constexpr Purpose purposes[] = {
    {"auto_contrast_brightness", &ICamera::autoContrastBrightnessControl},
    {"auto_exposure", &ICamera::autoExposureControl},
    {"auto_focus", &ICamera::autoFocusControl},
    {"auto_gamma", &ICamera::autoGammaControl},
    {"auto_hue", &ICamera::autoHueControl},
    {"auto_saturation", &ICamera::autoSaturationControl},
    {"auto_sharpness", &ICamera::autoSharpnessControl},
    {"auto_white_balance", &ICamera::autoWhiteBalanceControl},
    {"brightness", &ICamera::brightnessControl},
    {"contrast", &ICamera::contrastControl},
    {"exposure", &ICamera::exposureAbsoluteControl},
    {"focus", &ICamera::focusControl},
    {"gain", &ICamera::gainControl},
    {"gamma", &ICamera::gammaControl},
    {"hue", &ICamera::hueControl},
    {"light", &ICamera::lightIntensityControl},
    {"light_mode", &ICamera::lightModeControl},
    {"saturation", &ICamera::saturationControl},
    {"sharpness", &ICamera::sharpnessControl},
    {"white_balance", &ICamera::whiteBalanceTempControl},
};

ICameraControl* withShortName(ICamera const& camera, std::string const& name)
{
    ICameraControl* found = nullptr;
    for (int position = 0; position < camera.controlNumber(); ++position) {
        ICameraControl* const control = camera.control(position);
        if (shortName(control->name()) != name) {
            continue;
        }
        if (found != nullptr && std::strcmp(found->name(), control->name()) != 0) {
            throw Error({ErrorKind::Ambiguous, "find control '" + name + "'",
                         "'" + name + "' may be '" + found->name() + "' or '" + control->name() +
                             "'; give the full name"});
        }
        found = found == nullptr ? control : found;
    }
    return found;
}

ICameraControl* withPurpose(ICamera const& camera, std::string const& name)
{
    auto const* const purpose = std::find_if(std::begin(purposes), std::end(purposes),
                                             [&](Purpose const& one) { return name == one.name; });
    if (purpose == std::end(purposes)) {
        return nullptr;
    }
    ICameraControl* const control = (camera.*purpose->control)();
    return control == camera.invalidControl() ? nullptr : control;
}

/// How many letters must be put in, left out or replaced to make one of the other.
std::size_t editDistance(std::string const& a, std::string const& b)
{
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            std::size_t const replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = std::exchange(row[j + 1], std::min({replaced, row[j] + 1, row[j + 1] + 1}));
        }
    }
    return row.back();
}

/// The three nearest names, those that contain the text first.
std::string nearestNames(ICamera const& camera, std::string const& name)
{
    constexpr std::size_t told = 3;
    std::string const wanted = shortName(name);
    std::vector<std::pair<std::size_t, std::string>> names;
    for (int position = 0; position < camera.controlNumber(); ++position) {
        std::string const candidate = shortName(camera.control(position)->name());
        bool const contains = !wanted.empty() && candidate.find(wanted) != std::string::npos;
        names.emplace_back(contains ? 0 : editDistance(wanted, candidate), candidate);
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    std::string text;
    for (std::size_t i = 0; i < std::min(told, names.size()); ++i) {
        text += (i == 0 ? "nearest: " : ", ") + names[i].second;
    }
    return text.empty() ? "it has no controls" : text;
}

} // namespace

ICameraControl* lookUpControl(ICamera const& camera, std::string const& name)
{
    ICameraControl* const exact = camera.control(name.c_str());
    if (exact != camera.invalidControl()) {
        return exact;
    }
    ICameraControl* const shortened = withShortName(camera, name);
    return shortened != nullptr ? shortened : withPurpose(camera, name);
}

Control ControlFinder::handle(std::shared_ptr<Connection> const& connection,
                              ICameraControl& control) const
{
    return {m_camera, connection, control};
}

std::vector<Control> ControlFinder::all() const
{
    return m_camera->call([this](std::shared_ptr<Connection> const& present) {
        std::vector<Control> controls;
        controls.reserve(static_cast<std::size_t>(present->camera().controlNumber()));
        for (int position = 0; position < present->camera().controlNumber(); ++position) {
            controls.push_back(handle(present, *present->camera().control(position)));
        }
        return controls;
    });
}

Control ControlFinder::named(std::string const& name) const
{
    return m_camera->call([&](std::shared_ptr<Connection> const& present) {
        ICameraControl* const control = lookUpControl(present->camera(), name);
        if (control == nullptr) {
            throw Error({ErrorKind::NotFound, "find control '" + name + "'",
                         "the camera has no such control", present->node(), 0,
                         nearestNames(present->camera(), name)});
        }
        return handle(present, *control);
    });
}

} // namespace ImageAcquisition::Session
