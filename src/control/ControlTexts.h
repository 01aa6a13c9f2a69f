// SPDX-License-Identifier: MIT
#pragma once

#include "ICameraControl.h"
#include "system/ModuleExport.h"

namespace ImageAcquisition
{

/// "Boolean" and the like; "UnknownType" for Invalid and for what is no type.
IMAGEACQUISITION_MODULE_EXPORT char const* controlTypeText(ICameraControl::Type type);

/// The text at the family's number in the table of V4L2 control classes; "Unknown" beyond it.
char const* controlFamilyText(ICameraControl::Family family);

/// The family of a V4L2 control; Unknown for ids that are in no family.
ICameraControl::Family controlFamilyOf(unsigned int id);

} // namespace ImageAcquisition
