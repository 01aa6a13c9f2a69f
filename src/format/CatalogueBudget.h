// SPDX-License-Identifier: MIT
#pragma once

#include "system/DriverBounds.h"

namespace ImageAcquisition
{

/// How many entries a camera's catalogue may still get: formats, sizes and intervals together.
class CatalogueBudget
{
public:
    /// Takes one out; false when none is left.
    bool take()
    {
        if (m_left == 0) {
            return false;
        }
        --m_left;
        return true;
    }

private:
    unsigned int m_left = maximumCatalogueEntries;
};

} // namespace ImageAcquisition
