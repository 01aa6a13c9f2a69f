// SPDX-License-Identifier: MIT
#pragma once

#include <sys/resource.h>

/// While it lives, the process can make no new descriptor: neither open() nor pipe2() succeeds.
class DescriptorLimit
{
public:
    explicit DescriptorLimit(rlim_t limit = 0)
    {
        getrlimit(RLIMIT_NOFILE, &_earlier);
        rlimit const lowered{limit, _earlier.rlim_max};
        setrlimit(RLIMIT_NOFILE, &lowered);
    }
    DescriptorLimit(DescriptorLimit const&) = delete;
    DescriptorLimit& operator=(DescriptorLimit const&) = delete;
    ~DescriptorLimit() { setrlimit(RLIMIT_NOFILE, &_earlier); }

private:
    rlimit _earlier{};
};
