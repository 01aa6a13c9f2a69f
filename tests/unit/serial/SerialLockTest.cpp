// SPDX-License-Identifier: MIT
// The lock file that Qt keeps for a port. docs/security.md warns of it.
#include "SerialMachine.h"

#include <filesystem>
#include <fstream>

namespace
{

class SerialLockTest : public SerialMachineTest
{
protected:
    ~SerialLockTest() override { std::filesystem::remove(m_tty.lockFile()); }

    bool isLocked() const { return std::filesystem::exists(m_tty.lockFile()); }

    OpenedCamera m_camera;
};

TEST_F(SerialLockTest, PortIsLockedByAFileWhileItIsOpen)
{
    EXPECT_FALSE(isLocked());
    ASSERT_TRUE(m_camera.initCommunication());
    EXPECT_TRUE(isLocked());
    m_camera.endCommunication();
    EXPECT_FALSE(isLocked());
}

TEST_F(SerialLockTest, FileThatSomebodyElseMadeKeepsThePortFromBeingOpened)
{
    std::ofstream(m_tty.lockFile()) << "1\nsomebody\nanother-computer\n";
    EXPECT_FALSE(m_camera.initCommunication());
    EXPECT_TRUE(isLocked());
}

} // namespace
