// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace Iacq
{

/// Where the frames of a run go: each into a file of its own, or all of them into standard output,
/// a pipe or a device, which is opened once. When nobody reads a pipe any more, SIGPIPE ends the
/// process, as it ends other tools.
class FrameSink
{
public:
    /// @param path "-" is standard output.
    /// @throws Failure when that is no good name for so many frames.
    FrameSink(std::string path, int count);
    ~FrameSink();
    FrameSink(FrameSink const&) = delete;
    FrameSink& operator=(FrameSink const&) = delete;

    /// Opens what takes all frames; of a named pipe, it waits for a reader.
    /// @throws Failure when that is not possible.
    void open();

    /// @param number of the frame, counted from 1.
    /// @throws Failure when it cannot be written.
    void write(int number, std::vector<unsigned char> const& bytes);

    /// @throws Failure when not all could be written.
    void close();

private:
    std::string const m_path;
    int const m_count;
    int m_fd = -1; ///< Of what takes all frames; -1 for files.
};

} // namespace Iacq
