// SPDX-License-Identifier: MIT
#include "VividTransfer.h"

#include "input/InputMethodMemoryMapping.h"
#include "input/InputMethodUserPointers.h"

using namespace ImageAcquisition;
using namespace KernelTest;

using VividTransferTest = VividTransfer;

TEST_F(VividTransferTest, Libv4l2OffersMappingAndNoUserPointers)
{
    EXPECT_TRUE(InputMethodMemoryMapping::supported(m_fd));
    EXPECT_FALSE(InputMethodUserPointers::supported(m_fd));
    InputMethodUserPointers method(m_fd);
    EXPECT_EQ(setUpWithoutPipe(method, 4), -1);
}
