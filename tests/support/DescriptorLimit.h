// SPDX-License-Identifier: MIT
#pragma once

#include <sys/resource.h>

/// While it lives, the process can make no new descriptor: neither open() nor pipe2() succeeds.
class DescriptorLimit
{
public:
    explicit DescriptorLimit(rlim_t limit = 0)
    {
        getrlimit(RLIMIT_NOFILE, &m_earlier);
        rlimit const lowered{limit, m_earlier.rlim_max};
        setrlimit(RLIMIT_NOFILE, &lowered);
    }
    DescriptorLimit(DescriptorLimit const&) = delete;
    DescriptorLimit& operator=(DescriptorLimit const&) = delete;
    ~DescriptorLimit() { setrlimit(RLIMIT_NOFILE, &m_earlier); }

private:
    rlimit m_earlier{};
};
