// SPDX-License-Identifier: MIT
#pragma once

#include "DeviceStub.h"

/// A record of one of the vendor's cameras with a USB extension unit.
inline DeviceStub recordWithExtensionUnit()
{
    DeviceStub record;
    record.vendor = IMAGEACQUISITION_VENDOR_ID;
    record.product = IMAGEACQUISITION_PRODUCT_ID;
    return record;
}
