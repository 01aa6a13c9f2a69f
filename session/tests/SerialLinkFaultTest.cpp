// SPDX-License-Identifier: MIT
#include "SerialLinkFault.h"

#include "ScratchFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

namespace
{

using namespace ImageAcquisition::Session;

namespace files = std::filesystem;

class SerialLinkFaultTest : public testing::Test
{
protected:
    std::string fault(std::string const& log) const
    {
        std::istringstream lines(log);
        return serialLinkFault(lines, "usb-0000:00:14.0-2.3", m_folder);
    }

    ScratchFolder const m_scratch;
    std::string const m_folder = m_scratch.path().string();
};

TEST_F(SerialLinkFaultTest, IsAnEmptyLog)
{
    EXPECT_EQ(fault(""),
              "dmesg prints nothing, and so names no serial port of it; it may need more "
              "rights");
}

TEST_F(SerialLinkFaultTest, IsALogWithoutThePort)
{
    for (char const* const line :
         {"[ 1.0] Linux version 6.1.0\n", "[ 1.0] cdc_acm 1-2:1.5: ttyACM0: USB ACM device\n",
          "[ 1.0] cdc_acm 1-2.3:1.0: ttyACM0: USB ACM device\n",
          "[ 1.0] cdc_acm 1-12.3:1.5: ttyACM0: USB ACM device\n",
          "[ 1.0] cdc_acm 1-2.3:1.5: failed\n", "[ 1.0] 1-2.3:1.5: ttyACM0: USB ACM device\n",
          "[ 1.0] cdc_acm 1-2.3:1.5: "}) {
        EXPECT_EQ(fault(line), "dmesg names no serial port of it") << line;
    }
}

TEST_F(SerialLinkFaultTest, IsAPortThatCannotBeOpened)
{
    files::create_symlink("ttyACM12", m_folder + "/ttyACM12");
    EXPECT_EQ(fault("[ 1.0] cdc_acm 1-2.3:1.5: ttyACM3: USB ACM device\n"
                    "[ 9.0] cdc_acm 3-2.3:1.5: ttyACM12: USB ACM device\n"
                    "[ 9.9] cdc_acm 1-4:1.5: ttyACM0: USB ACM device\n"),
              "its serial port " + m_folder +
                  "/ttyACM12 cannot be opened: Too many levels of symbolic links");
}

TEST_F(SerialLinkFaultTest, IsElseBehindThePort)
{
    EXPECT_EQ(fault("[ 1.0] cdc_acm 1-2.3:1.5: ttyACM0: USB ACM device\n"),
              "its serial port " + m_folder +
                  "/ttyACM0 is gone or in use, or the camera does not answer "
                  "there");
}

} // namespace
