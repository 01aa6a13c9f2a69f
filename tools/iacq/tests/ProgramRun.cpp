// SPDX-License-Identifier: MIT
#include "ProgramRun.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace
{

std::string readFile(std::string const& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

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
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(folder.path("out")),
            withoutFamilyWarnings(readFile(folder.path("err")))};
}

ProgramRun runIacq(Words const& arguments, Words const& cameras)
{
    Words command = {WITH_VIRTUAL_CAMERA};
    command.insert(command.end(), cameras.begin(), cameras.end());
    command.emplace_back(IACQ_PROGRAM);
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runProgram(command);
}

ScratchFolder::ScratchFolder()
{
    char name[] = "/tmp/iacq-run-XXXXXX";
    if (mkdtemp(name) == nullptr) {
        throw std::runtime_error("no scratch folder");
    }
    m_path = name;
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string ScratchFolder::write(std::string const& name, std::string const& text) const
{
    std::ofstream(path(name)) << text;
    return path(name);
}

std::string ScratchFolder::read(std::string const& name) const
{
    return readFile(path(name));
}

std::vector<std::string> ScratchFolder::names() const
{
    std::vector<std::string> result;
    for (auto const& entry : std::filesystem::directory_iterator(m_path)) {
        result.push_back(entry.path().filename());
    }
    std::sort(result.begin(), result.end());
    return result;
}
