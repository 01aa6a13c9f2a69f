// SPDX-License-Identifier: MIT
#pragma once

#include "FuserFolder.h"
#include "PrivateControls.h"
#include "SerialRows.h"

#include <gtest/gtest.h>

namespace KernelTest
{

/// The controls of a camera with a serial link. The camera opens in seconds, hence once for all
/// tests, which leave it as they like.
class SerialControls : public testing::Test
{
protected:
    static void SetUpTestSuite();
    static void TearDownTestSuite();
    void SetUp() override { ASSERT_NE(camera, nullptr); }
    void TearDown() override { cameras->command("clear"); }

    /// The bytes in the camera that a row is a part of.
    static Bytes bytesOf(SerialRow const& row);
    /// The row's part of its control's bytes: where it begins, and how long it is.
    static std::pair<unsigned, unsigned> fieldOf(SerialRow const& row);

    static long long read(SerialRow const& row);
    /// Sets another value than the present one; the result is that value.
    static long long change(SerialRow const& row);

    static std::unique_ptr<FuserFolder> folder;
    static std::unique_ptr<EmulatedCameras> cameras;
    static CameraPointer camera;
};

} // namespace KernelTest
