// SPDX-License-Identifier: MIT
#pragma once

#include "session/ControlValue.h"

#include <string>
#include <vector>

namespace ImageAcquisition
{
class ICameraControl;
}

namespace ImageAcquisition::Session
{

/// What a control has at present, or why it cannot be told.
struct Reading
{
    ControlValue value = 0; ///< Number, Boolean, text or label.
    long long number = 0;   ///< Of a menu the position, of a switch 0 or 1; 0 of texts.
    std::string failure;    ///< Empty when it could be read.
    int systemError = 0;    ///< `errno` of the failure.
};

/// Smallest and largest value of a number, length of a text; zeros for others.
struct ControlRange
{
    long long minimum = 0;
    long long maximum = 0;
    long long step = 1;
};

Reading readValue(ICameraControl& control);
ControlRange rangeOf(ICameraControl& control);
/// The labels of a menu; the library tells none of a menu of numbers.
std::vector<std::string> itemsOf(ICameraControl& control);

} // namespace ImageAcquisition::Session
