// SPDX-License-Identifier: MIT
// What a run leaves in the temporary folder, however it ends, and what it does with what is there.
#include "Await.h"
#include "ScratchFolder.h"
#include "WrapperRun.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <chrono>
#include <set>
#include <thread>

namespace
{

namespace files = std::filesystem;

/// Where a client finds the tty of the camera.
constexpr char tty[] = "$(dmesg | sed -n \"s/.*: \\(ttyACM[0-9]\\): .*/\\1/p\")";

/// Longer than it takes a process to run, on any machine.
constexpr std::chrono::seconds patience(10);

class ProgramRemainsTest : public testing::Test
{
protected:
    ProgramRemainsTest()
    {
        // As /tmp is.
        chmod(folder().c_str(), 01777);
    }

    files::path const& folder() const { return m_folder.path(); }
    std::string command(std::string const& arguments) const
    {
        return "TMPDIR=" + folder().string() + " " + WITH_VIRTUAL_CAMERA + " --model serial " +
               arguments;
    }
    CommandResult runHere(std::string const& arguments) const
    {
        return ShellCommand(command(arguments)).finish();
    }
    std::set<std::string> remains() const
    {
        std::set<std::string> names;
        for (std::string const& name : m_folder.names()) {
            // ThreadSanitizer makes such a file for a moment, which stays when it is killed then.
            if (name.compare(0, 5, "tsan.") != 0) {
                names.insert(name);
            }
        }
        return names;
    }
    /// True when nothing is left within a time in which a process can be expected to run.
    bool isEmptySoon() const
    {
        return await([this] { return remains().empty(); }, patience);
    }

private:
    ScratchFolder const m_folder;
};

TEST_F(ProgramRemainsTest, AreNoneAfterTheProgramsEnd)
{
    EXPECT_EQ(runHere("true").status, 0);
    EXPECT_EQ(remains(), std::set<std::string>());
}

TEST_F(ProgramRemainsTest, AreNotForOtherUsersWhileItRuns)
{
    CommandResult const outcome = runHere("sh -c 'stat -c %a:%F $TMPDIR/*'");
    EXPECT_EQ(outcome.output, "700:directory\n") << "one folder, and nothing beside it";
    EXPECT_EQ(runHere("sh -c 'echo $UMOCKDEV_DIR'").output.rfind(folder().string() + "/", 0), 0u);
}

TEST_F(ProgramRemainsTest, AreNoneWhenASignalEndsIt)
{
    EXPECT_EQ(runHere("sh -c 'kill -TERM $PPID; while :; do :; done'").status, 128 + SIGTERM);
    EXPECT_EQ(remains(), std::set<std::string>());
    EXPECT_EQ(runHere("sh -c 'kill -INT $PPID; exit 3'").status, 3);
    EXPECT_EQ(remains(), std::set<std::string>());
}

TEST_F(ProgramRemainsTest, AreNoneWhenItsProgramIsKilled)
{
    EXPECT_EQ(runHere("sh -c 'kill -KILL $$'").status, 128 + SIGKILL);
    EXPECT_EQ(remains(), std::set<std::string>());
}

TEST_F(ProgramRemainsTest, AreNoneWhenItIsAborted)
{
    EXPECT_EQ(runHere("sh -c 'kill -ABRT $PPID'").status, 128 + SIGABRT);
    EXPECT_TRUE(isEmptySoon());
}

TEST_F(ProgramRemainsTest, AreNoneWhenItIsKilled)
{
    EXPECT_EQ(runHere("sh -c 'kill -KILL $PPID'").status, 128 + SIGKILL);
    EXPECT_TRUE(isEmptySoon());
}

TEST_F(ProgramRemainsTest, AreNoneWhenItIsInterruptedBeforeItsProgramRuns)
{
    for (int turn = 0; turn < 5; ++turn) {
        ShellCommand wrapper("sh -c 'echo $$; exec \"$@\"' sh env " + command("sleep 0.5"));
        pid_t const process = std::stoi(wrapper.line());
        ASSERT_TRUE(await([this] { return !remains().empty(); }, patience));
        kill(process, SIGINT);
        // The program gets the signal, unless it ran already: then only the terminal would send it.
        int const status = wrapper.finish().status;
        EXPECT_TRUE(status == 128 + SIGINT || status == 0) << status;
        EXPECT_EQ(remains(), std::set<std::string>());
    }
}

TEST_F(ProgramRemainsTest, AreNoneWhenTheCamerasMakeNoSense)
{
    for (char const* cameras :
         {"{", "[]", R"({"cameras": [{"nodes": 1}]})", R"({"cameras": [{"node": "/"}]})",
          R"({"cameras": [{"formats": [{"pixelFormat": "YUYV", "sizes": [{"width": -1}]}]}]})",
          R"({"cameras": [{"node": "/dev/video0"}, {"node": "/dev/video0"}]})"}) {
        Configuration const file(cameras);
        EXPECT_EQ(runHere(file.option() + "true").status, 1) << cameras;
        EXPECT_EQ(remains(), std::set<std::string>());
    }
    EXPECT_EQ(runHere("--model nonsense true").status, 1);
    EXPECT_EQ(runHere("/no/such/program").status, 127);
    EXPECT_EQ(remains(), std::set<std::string>());
}

TEST_F(ProgramRemainsTest, CannotBeMadeWithoutATemporaryFolder)
{
    CommandResult const outcome =
        ShellCommand("TMPDIR=/no/such/folder " WITH_VIRTUAL_CAMERA " true").finish();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output,
              "with-virtual-camera: cannot make a folder in /no/such/folder: No such "
              "file or directory\n");
}

TEST_F(ProgramRemainsTest, AreElsewhereWhenTheFoldersNameIsTooLongForASocket)
{
    files::path const deep = folder() / std::string(80, 'x');
    files::create_directory(deep);
    CommandResult const outcome =
        ShellCommand(
            "TMPDIR=" + deep.string() + " " + WITH_VIRTUAL_CAMERA +
            " sh -c 'test -S $UMOCKDEV_DIR/ioctl/dev/bus/usb/001/002; echo $? $UMOCKDEV_DIR'")
            .finish();
    ASSERT_EQ(outcome.output.substr(0, 7), "0 /tmp/");
    EXPECT_FALSE(files::exists(files::path(outcome.output.substr(2)).parent_path()));
    EXPECT_TRUE(files::is_empty(deep));
}

/// Under these names ports were once reserved, by files in the temporary folder.
std::string earlierName(int digit)
{
    return "imageacquisition-test-ttyACM" + std::to_string(digit);
}

TEST_F(ProgramRemainsTest, AreNotWrittenThroughPlantedLinks)
{
    files::path const target = folder() / "target";
    for (int digit = 0; digit < 10; ++digit) {
        files::create_symlink(target, folder() / earlierName(digit));
    }
    EXPECT_EQ(runHere("true").status, 0);
    EXPECT_FALSE(files::exists(target));
    EXPECT_EQ(remains().size(), 10u);
}

TEST_F(ProgramRemainsTest, DoNotDependOnWhatOthersLeft)
{
    for (int digit = 0; digit < 10; ++digit) {
        files::create_directory(folder() / earlierName(digit));
    }
    EXPECT_EQ(runHere("true").status, 0);
    EXPECT_EQ(remains().size(), 10u);
}

/// A copy of the programs that every user may run, and what to write before one to be another user.
class ForEveryUser
{
public:
    explicit ForEveryUser(files::path const& folder) : m_folder(folder / "programs")
    {
        files::create_directory(m_folder);
        files::path const wrapper = WITH_VIRTUAL_CAMERA;
        for (files::path const& file :
             {wrapper, files::path(SAMPLE_CLIENT), wrapper.parent_path() / VIRTUALCAMERA_LIBRARY}) {
            files::copy_file(file, m_folder / file.filename());
        }
        files::permissions(m_folder, files::perms(0755));
    }
    ~ForEveryUser() { files::remove_all(m_folder); }
    ForEveryUser(ForEveryUser const&) = delete;
    ForEveryUser& operator=(ForEveryUser const&) = delete;

    /// Only root may become somebody else; for others it stays the same user.
    std::string as(char const* user) const
    {
        bool const possible = geteuid() == 0;
        return possible ? std::string("setpriv --reuid ") + user + " --clear-groups " : "";
    }
    std::string wrapper() const
    {
        return "env LD_LIBRARY_PATH=" + m_folder.string() +
               " TMPDIR=" + m_folder.parent_path().string() + " " +
               (m_folder / files::path(WITH_VIRTUAL_CAMERA).filename()).string() + " ";
    }
    std::string client() const
    {
        return (m_folder / files::path(SAMPLE_CLIENT).filename()).string();
    }

private:
    files::path m_folder;
};

TEST_F(ProgramRemainsTest, DoNotKeepTwoUsersFromRunningAtOnce)
{
    ForEveryUser const copy(folder());
    for (int digit = 0; digit < 10; ++digit) {
        std::ofstream{folder() / earlierName(digit)};
    }
    files::path const flag = folder() / "flag";
    std::ofstream{flag};
    std::string const arguments = "--model serial sh -c 'echo " + std::string(tty) + "; " +
                                  copy.client() + " exchange /dev/" + tty + "; while [ -e " +
                                  flag.string() + " ]; do sleep 0.01; done'";
    ShellCommand one(copy.as("65533") + copy.wrapper() + arguments);
    std::string const first = one.line();
    EXPECT_EQ(first.rfind("ttyACM", 0), 0u) << first;
    EXPECT_EQ(one.line(), "a1850006000102000200");
    ShellCommand other(copy.as("65534") + copy.wrapper() + arguments);
    std::string const second = other.line();
    EXPECT_EQ(second.rfind("ttyACM", 0), 0u) << second;
    EXPECT_EQ(other.line(), "a1850006000102000200");
    EXPECT_NE(second, first);
    files::remove(flag);
    EXPECT_EQ(one.finish().status, 0);
    EXPECT_EQ(other.finish().status, 0);
}

TEST_F(ProgramRemainsTest, AreNoLocksOfAKilledClient)
{
    ShellCommand program(command("sh -c 'lock=/var/lock/LCK..") + tty +
                         "; echo $$ >$lock; echo $lock; kill -KILL $$'");
    files::path const lock = program.line();
    ASSERT_EQ(lock.parent_path(), "/var/lock");
    EXPECT_EQ(program.finish().status, 128 + SIGKILL);
    EXPECT_FALSE(files::exists(lock));
    files::remove(lock);
}

} // namespace
