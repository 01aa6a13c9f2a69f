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
    // The library tells how it finds a serial port; a user of the tool need not know.
    ::setenv("QT_LOGGING_RULES", "default.info=false", 0);
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
