// SPDX-License-Identifier: MIT
#pragma once

#include "session/Error.h"

#include <optional>

/// The error that an action throws; nothing when it throws none.
template <typename Action>
std::optional<ImageAcquisition::Session::Error> errorOf(Action const& action)
{
    try {
        action();
    } catch (ImageAcquisition::Session::Error const& error) {
        return error;
    }
    return std::nullopt;
}
