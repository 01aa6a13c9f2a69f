// SPDX-License-Identifier: MIT
#pragma once

#include "ScratchFolder.h"

#include <string>
#include <vector>

/// What a run of a program left behind.
struct ProgramRun
{
    int status; ///< Exit status; -1 when a signal ended it.
    std::string output;
    std::string errors; ///< Without the library's own warnings about families.
};

using Words = std::vector<std::string>;

ProgramRun runProgram(Words const& command);

/// Runs iacq on virtual cameras; @p cameras are options of the wrapper, none for its usual ones.
ProgramRun runIacq(Words const& arguments, Words const& cameras = {});
