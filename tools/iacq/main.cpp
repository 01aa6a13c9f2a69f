// SPDX-License-Identifier: MIT
#include "CommandLine.h"
#include "Failure.h"
#include "Output.h"
#include "TerminalText.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

namespace Iacq
{

namespace
{

int fail(ExitStatus status, std::string const& message)
{
    tell(message);
    return status;
}

/// Fills what was closed from the start, or a camera might be opened in its place and be written
/// to. Writing to the stand-in for standard output fails, as it should.
void occupyStandardDescriptors()
{
    while (true) {
        int const descriptor = ::open("/dev/null", O_RDONLY);
        if (descriptor == -1 || descriptor > STDERR_FILENO) {
            ::close(descriptor);
            return;
        }
    }
}

} // namespace

} // namespace Iacq

int main(int argc, char** argv)
{
    Iacq::occupyStandardDescriptors();
    // A closed pipe is an error to be told like any other.
    std::signal(SIGPIPE, SIG_IGN);
    // The serial link's own account, and what Qt finds fault with, go to standard error: a user of
    // the tool need not know, and is told here why a camera cannot be opened. By the environment,
    // since the tool itself needs no Qt, and only what is fatal fits the pattern.
    ::setenv("QT_MESSAGE_PATTERN", "%{if-fatal}%{message}%{endif}", 0);
    try {
        Iacq::CommandLine().run(argc, argv);
        Iacq::closeStandardOutput();
        return Iacq::Success;
    } catch (Iacq::Failure const& failure) {
        return Iacq::fail(failure.status(), failure.what());
    } catch (std::exception const& error) {
        return Iacq::fail(Iacq::CameraFailed, error.what());
    }
}
