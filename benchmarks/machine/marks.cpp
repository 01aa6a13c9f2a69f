// SPDX-License-Identifier: MIT
// A mark for programs that are written in another language.
#include "Marks.h"

extern "C" __attribute__((visibility("default"))) void benchmarkMarkPassage()
{
    markPassage();
}
