// SPDX-License-Identifier: MIT
#include "serial/SystemTool.h"

#include <QProcess>

#include <csignal>
#include <unistd.h>

namespace ImageAcquisition
{

namespace
{

/// A tool may be a script with children of its own; a process group reaches all of them.
class GroupProcess : public QProcess
{
public:
    void killGroup()
    {
        auto const group = static_cast<pid_t>(processId());
        if (group > 0) {
            ::kill(-group, SIGKILL);
        }
        kill();
        waitForFinished();
    }

protected:
    void setupChildProcess() override { setpgid(0, 0); }
};

} // namespace

int SystemTool::msTimeout = 30000;

QByteArray SystemTool::run(QString const& program, QStringList const& arguments)
{
    GroupProcess process;
    process.start(program, arguments, QIODevice::ReadWrite);
    if (!process.waitForFinished(msTimeout)) {
        process.killGroup();
        return {};
    }
    return process.readAllStandardOutput();
}

} // namespace ImageAcquisition
