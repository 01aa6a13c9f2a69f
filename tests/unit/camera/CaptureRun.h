// SPDX-License-Identifier: MIT
#pragma once

#include "IBlockingCamera.h"
#include "VirtualCamera.h"
#include "input/InputMethod.h"

#include <array>
#include <utility>
#include <vector>

/// The steps of a whole run, in order.
enum class Step { Open, Select, Inspect, Setup, Start, Acquire, Release, Stop, Cleanup, Close };

char const* nameOf(Step step);

/// A run through open, select, capture and close, and what every step answered. No step is left
/// out because an earlier one failed, as a careless application would do it.
struct CaptureRun
{
    static constexpr int frames = 3;

    /// @p method decides whether the set-up happens where a pipe can be made.
    CaptureRun(VirtualCamera::InstalledCamera& camera, ImageAcquisition::InputMethod::Type method);

    bool opened = false;
    int formats = -1;
    int sizes = -1;
    int periods = -1;
    int controls = -1;
    bool selected = false;
    bool formatKnown = false;
    bool sizeKnown = false;
    bool periodKnown = false;
    bool formatAbsent = false; ///< The catalogue did not know the device's format.
    int setup = -2;
    int start = -2;
    std::array<bool, frames> delivered{};
    std::array<int, frames> released{};
    int stop = -2;
    int cleanup = -2;

    /// How many calls the camera had seen when each step was over.
    std::vector<std::pair<Step, std::size_t>> marks;

    /// The step that made the call at @p position of the log.
    Step stepOf(std::size_t position) const;

    /// Everything but the marks.
    bool operator==(CaptureRun const& other) const;

private:
    void open(ImageAcquisition::IBlockingCamera const& camera);
    void inspect(ImageAcquisition::IBlockingCamera const& camera);
    void capture(ImageAcquisition::IBlockingCamera& camera);
    void mark(Step step) { marks.emplace_back(step, m_virtual.calls().size()); }

    VirtualCamera::InstalledCamera& m_virtual;
};
