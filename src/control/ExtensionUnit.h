// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ImageAcquisition
{

/// A UVC extension unit whose controls are made known to the driver.
class ExtensionUnit
{
public:
    explicit ExtensionUnit(char const* name);
    ExtensionUnit(ExtensionUnit const&) = delete;
    ExtensionUnit& operator=(ExtensionUnit const&) = delete;
    virtual ~ExtensionUnit();

    char const* name() const { return m_name.c_str(); }

private:
    std::string m_name;
};

} // namespace ImageAcquisition
