// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

namespace ImageAcquisition
{

/// Keeps the calling thread off the processor for at least so long, however many signals come.
void pauseFor(std::chrono::milliseconds duration);

} // namespace ImageAcquisition
