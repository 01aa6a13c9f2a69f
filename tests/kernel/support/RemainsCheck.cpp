// SPDX-License-Identifier: MIT
#include "RemainsCheck.h"

#include "ProcessCensus.h"
#include "ThreadCount.h"

#include <gtest/gtest.h>

namespace KernelTest
{

namespace
{

std::vector<std::string> sortedDescriptors()
{
    std::vector<std::string> targets = descriptorTargets();
    std::sort(targets.begin(), targets.end());
    return targets;
}

} // namespace

RemainsCheck::RemainsCheck()
    : m_descriptors(sortedDescriptors()), m_threads(threadCount()),
      m_children(childrenOfThisProcess())
{
}

RemainsCheck::~RemainsCheck()
{
    EXPECT_EQ(sortedDescriptors(), m_descriptors);
    EXPECT_TRUE(awaitThreadCount(m_threads));
    EXPECT_EQ(childrenOfThisProcess(), m_children);
}

} // namespace KernelTest
