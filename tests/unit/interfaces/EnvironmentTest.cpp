// SPDX-License-Identifier: MIT
// What the environment makes the libraries below do. docs/security.md warns of it.
#include <ICameraFactory.h>
#include <IDevice.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

namespace
{

namespace fs = std::filesystem;

std::string contentOf(fs::path const& path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(EnvironmentTest, NamesAFileThatIsEmptiedWhenANodeIsOpened)
{
    std::string folder = (fs::temp_directory_path() / "environment-XXXXXX").string();
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    fs::path const file = fs::path(folder) / "precious";
    std::ofstream(file) << "precious";
    setenv("LIBV4L2_LOG_FILENAME", file.c_str(), 1);
    // No camera, but a node that can be opened.
    std::unique_ptr<ImageAcquisition::IDevice> const device(
        ImageAcquisition::ICameraFactory::getUniqueInstance().createDevice("null"));
    unsetenv("LIBV4L2_LOG_FILENAME");
    EXPECT_EQ(device, nullptr);
    EXPECT_EQ(contentOf(file).find("precious"), std::string::npos);
    fs::remove_all(folder);
}

} // namespace
