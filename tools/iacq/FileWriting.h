// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>
#include <csignal>
#include <string>
#include <vector>

namespace Iacq
{

/// Tells that something cannot be written, and why.
[[noreturn]] void failWriting(std::string const& what, int error = errno);

/// Writes all of it, however many calls that takes; errno tells what went wrong.
bool writeAll(int fd, unsigned char const* data, std::size_t size);

/// Whether it is a device, a pipe or the like, which is written to as it is.
bool isSpecialFile(std::string const& path);

/// Writes a file whole or not at all: an ordinary file appears under its name only when all of it
/// is there. One that exists keeps its permissions, and a link to it stays one. Where nothing can
/// be put beside it, the file itself is written; should that fail, it is left empty.
/// @throws Failure when that is not possible.
void writeFile(std::string const& path, std::vector<unsigned char> const& bytes);

/// Blocks the signals that would end the tool between two steps, and leave half of a file behind,
/// in this thread.
class SignalsBlocked
{
public:
    SignalsBlocked();
    ~SignalsBlocked();
    SignalsBlocked(SignalsBlocked const&) = delete;
    SignalsBlocked& operator=(SignalsBlocked const&) = delete;

private:
    sigset_t m_before{};
};

} // namespace Iacq
