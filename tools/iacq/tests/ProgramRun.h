// SPDX-License-Identifier: MIT
#pragma once

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

/// A folder of its own for a test, gone with its contents afterwards.
class ScratchFolder
{
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(ScratchFolder const&) = delete;
    ScratchFolder& operator=(ScratchFolder const&) = delete;

    std::string path(std::string const& name) const { return m_path + "/" + name; }
    std::string write(std::string const& name, std::string const& text) const;
    std::string read(std::string const& name) const;
    std::vector<std::string> names() const;

private:
    std::string m_path;
};
