// SPDX-License-Identifier: MIT
#pragma once

#include "Export.h"

namespace ImageAcquisition
{

class IDevice;

/**
 * @brief The cameras that were there when the list was made.
 *
 * The list owns its records: pointers to them are good until the list is deleted. A camera copies
 * the record that it is made from and does not need the list any longer.
 *
 * Threads: a list may be read from any thread.
 */
class IMAGEACQUISITION_EXPORT IDeviceList
{
public:
    virtual ~IDeviceList();

    /// Number of cameras.
    virtual int size() const = 0;

    /// The record at @p position, counted from 0; null outside 0 to size() - 1.
    virtual IDevice const* at(int position) const = 0;

    /// The first record whose IDevice::name() equals @p name to the letter; null when there is
    /// none, or when @p name is null. A node's path is no name.
    virtual IDevice const* deviceByName(char const* name) const = 0;
};

} // namespace ImageAcquisition
