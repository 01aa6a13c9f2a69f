// SPDX-License-Identifier: MIT
#pragma once

// Instructions that do nothing, with numbers in them by which the counter in the virtual machine's
// emulator tells where a measurement begins, passes a point and ends.
#if defined(__x86_64__)
#define BENCHMARK_MARK(number) __asm__ volatile("nopl " #number "(%%rax)" ::: "memory")
#else
#define BENCHMARK_MARK(number) static_cast<void>(0)
#endif

inline void markBeginning()
{
    BENCHMARK_MARK(0x6d61726b);
}

inline void markPassage()
{
    BENCHMARK_MARK(0x6d61726c);
}

inline void markEnd()
{
    BENCHMARK_MARK(0x6d61726d);
}
