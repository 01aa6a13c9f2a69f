// SPDX-License-Identifier: MIT
#include "CameraModel.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace UsbCamera;

TEST(CameraModelTest, TakesPropertiesFromItsText)
{
    CameraModel const model =
        parseModel("vendor-old,vendor=1234,product=abcd,serial=S 1,speed=super,firmware=TJ8-9.8.7");
    EXPECT_EQ(model.vendorId, 0x1234);
    EXPECT_EQ(model.productId, 0xabcd);
    EXPECT_EQ(model.serialNumber, "S 1");
    EXPECT_EQ(model.speed, Speed::Super);
    EXPECT_EQ(model.usbRelease, 0x0300);
    EXPECT_EQ(model.firmware, (Bytes{'T', 'J', '8', '-', '9', '.', '8', '.', '7', 0}));
    EXPECT_FALSE(model.hasSerialPort);
}

TEST(CameraModelTest, RefusesWhatItDoesNotKnow)
{
    for (char const* text : {"", "toaster", "ordinary,wheels=4", "ordinary,speed=fast",
                             "ordinary,vendor=12345", "ordinary,port=x", "ordinary,serial"}) {
        EXPECT_THROW(parseModel(text), std::invalid_argument) << text;
    }
}
