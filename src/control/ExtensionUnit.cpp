// SPDX-License-Identifier: MIT
#include "control/ExtensionUnit.h"

namespace ImageAcquisition
{

ExtensionUnit::ExtensionUnit(char const* name) : m_name(name) {}

ExtensionUnit::~ExtensionUnit() = default;

} // namespace ImageAcquisition
