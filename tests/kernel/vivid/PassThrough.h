// SPDX-License-Identifier: MIT
#pragma once

namespace KernelTest
{

/// While it lives, the v4l2_* functions of this program go straight to the system instead of to
/// libv4l2, which refuses what it does not handle itself.
class PassThrough
{
public:
    PassThrough();
    ~PassThrough();
    PassThrough(PassThrough const&) = delete;
    PassThrough& operator=(PassThrough const&) = delete;
};

} // namespace KernelTest
