// SPDX-License-Identifier: MIT
#include "ProgramRun.h"

#include <sys/wait.h>

#include <cstdlib>
#include <sstream>

namespace
{

std::string withoutFamilyWarnings(std::string const& text)
{
    std::istringstream lines(text);
    std::string kept;
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("WARNING: Control with id", 0) != 0) {
            kept += line + "\n";
        }
    }
    return kept;
}

std::string quoted(std::string const& word)
{
    std::string result = "'";
    for (char const character : word) {
        result += character == '\'' ? std::string("'\\''") : std::string(1, character);
    }
    return result + "'";
}

} // namespace

ProgramRun runProgram(Words const& command)
{
    ScratchFolder const folder;
    std::string line;
    for (std::string const& word : command) {
        line += quoted(word) + " ";
    }
    line += "</dev/null >" + quoted(folder.path("out")) + " 2>" + quoted(folder.path("err"));
    int const status = std::system(line.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, folder.read("out"),
            withoutFamilyWarnings(folder.read("err"))};
}

ProgramRun runIacq(Words const& arguments, Words const& cameras)
{
    Words command = {WITH_VIRTUAL_CAMERA};
    command.insert(command.end(), cameras.begin(), cameras.end());
    command.emplace_back(IACQ_PROGRAM);
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runProgram(command);
}
