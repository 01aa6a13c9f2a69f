// SPDX-License-Identifier: MIT
#pragma once

/// Runs before each allocation of the program, in the thread that makes it; may throw
/// std::bad_alloc. A program that has AllocationHook.cpp defines it.
void beforeAllocation();
