// SPDX-License-Identifier: MIT
#include "serial/SystemTool.h"

#include <QElapsedTimer>
#include <QProcess>

#include <csignal>
#include <sys/prctl.h>
#include <unistd.h>

namespace ImageAcquisition
{

namespace
{

/// Far above any kernel log. A tool that prints without end would fill the memory long before its
/// time is up.
constexpr qint64 maxOutput = qint64{256} * 1024 * 1024;

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
    void setupChildProcess() override
    {
        setpgid(0, 0);
        // In a group of its own it no longer hears of Ctrl-C.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
    }
};

} // namespace

QByteArray SystemTool::run(QString const& program, QStringList const& arguments, int milliseconds)
{
    GroupProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(program, arguments, QIODevice::ReadWrite);
    QElapsedTimer elapsed;
    elapsed.start();
    // waitForFinished() would go on for as long as there is output.
    while (process.state() != QProcess::NotRunning) {
        int const remaining = milliseconds - static_cast<int>(elapsed.elapsed());
        if (remaining <= 0 || process.bytesAvailable() > maxOutput) {
            process.killGroup();
            return {};
        }
        process.waitForReadyRead(remaining);
    }
    return process.readAllStandardOutput();
}

} // namespace ImageAcquisition
