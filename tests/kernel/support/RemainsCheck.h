// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace KernelTest
{

/// At its end the process must have as many descriptors open, threads and children as at its
/// beginning.
class RemainsCheck
{
public:
    RemainsCheck();
    ~RemainsCheck();
    RemainsCheck(RemainsCheck const&) = delete;
    RemainsCheck& operator=(RemainsCheck const&) = delete;

private:
    std::vector<std::string> m_descriptors;
    int m_threads;
    int m_children;
};

} // namespace KernelTest
