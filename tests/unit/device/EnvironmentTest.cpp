// SPDX-License-Identifier: MIT
// What the environment makes the libraries below do. docs/security.md warns of it.
#include "ScratchFolder.h"

#include <ICameraFactory.h>
#include <IDevice.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace
{

TEST(EnvironmentTest, NamesAFileThatIsEmptiedWhenANodeIsOpened)
{
    ScratchFolder const folder;
    std::string const file = folder.write("precious", "precious");
    setenv("LIBV4L2_LOG_FILENAME", file.c_str(), 1);
    // No camera, but a node that can be opened.
    std::unique_ptr<ImageAcquisition::IDevice> const device(
        ImageAcquisition::ICameraFactory::getUniqueInstance().createDevice("null"));
    unsetenv("LIBV4L2_LOG_FILENAME");
    EXPECT_EQ(device, nullptr);
    EXPECT_EQ(folder.read("precious").find("precious"), std::string::npos);
}

} // namespace
