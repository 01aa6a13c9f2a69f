// SPDX-License-Identifier: MIT
#pragma once

#include <IBlockingCamera.h>

namespace KernelTest
{

/// The driver drops frames while no buffer is free: with half a second's worth of them none is lost
/// to a busy machine.
constexpr int manyBuffers = 16;

/// Captures frames of an emulated camera. From 0 on they have to be the painter's, without a gap,
/// stamped one after the other.
void expectFrames(ImageAcquisition::IBlockingCamera& camera, unsigned width, unsigned height,
                  unsigned count);

} // namespace KernelTest
