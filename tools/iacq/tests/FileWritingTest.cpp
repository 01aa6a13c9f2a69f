// SPDX-License-Identifier: MIT
#include "FileWriting.h"

#include "Failure.h"
#include "ScratchFolder.h"

#include <gmock/gmock.h>

#include <grp.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <iterator>

namespace
{

class FileWritingTest : public testing::Test
{
protected:
    FileWritingTest() { EXPECT_EQ(chmod(m_directory.c_str(), 0755), 0); }
    std::vector<std::string> names() const { return m_folder.names(); }
    std::string contents(std::string const& name) const { return m_folder.read(name); }
    bool isLink(std::string const& name) const
    {
        struct stat status;
        return lstat((m_directory + "/" + name).c_str(), &status) == 0 && S_ISLNK(status.st_mode);
    }
    mode_t modeOf(std::string const& name) const
    {
        struct stat status
        {
        };
        stat((m_directory + "/" + name).c_str(), &status);
        return status.st_mode & 07777;
    }
    /// Writes "new" as a user whom permissions bind, who may write so many bytes at most. Returns
    /// what went wrong.
    std::string writtenByAnOrdinaryUser(std::string const& name, rlim_t most = RLIM_INFINITY) const
    {
        int ends[2];
        if (pipe(ends) != 0) {
            return "no pipe";
        }
        pid_t const child = fork();
        if (child == 0) {
            std::string const trouble = asAnOrdinaryUser(m_directory + "/" + name, most);
            _exit(write(ends[1], trouble.data(), trouble.size()) == -1);
        }
        close(ends[1]);
        char text[256];
        ssize_t const size = read(ends[0], text, sizeof text);
        close(ends[0]);
        int status = -1;
        waitpid(child, &status, 0);
        return status == 0 ? std::string(text, static_cast<std::size_t>(std::max<ssize_t>(size, 0)))
                           : "the child failed";
    }

    ScratchFolder const m_folder;
    std::string const m_directory = m_folder.path().string();

private:
    static std::string asAnOrdinaryUser(std::string const& path, rlim_t most)
    {
        constexpr uid_t nobody = 65534;
        rlimit const limit{most, RLIM_INFINITY};
        std::signal(SIGXFSZ, SIG_IGN);
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0 ||
            (geteuid() == 0 &&
             (setgroups(0, nullptr) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0))) {
            return "no such user";
        }
        try {
            Iacq::writeFile(path, {'n', 'e', 'w'});
        } catch (Iacq::Failure const& failure) {
            return failure.what();
        }
        return "";
    }
};

TEST_F(FileWritingTest, ReplacesWhatWasThere)
{
    Iacq::writeFile(m_directory + "/a.raw", {'o', 'l', 'd', '!'});
    Iacq::writeFile(m_directory + "/a.raw", {'n', 'e', 'w'});
    EXPECT_EQ(contents("a.raw"), "new");
    EXPECT_EQ(names().size(), 1u);
}

TEST_F(FileWritingTest, LeavesNothingBehindWhenTheDirectoryIsAbsent)
{
    EXPECT_THROW(Iacq::writeFile(m_directory + "/absent/a.raw", {'x'}), Iacq::Failure);
    EXPECT_TRUE(names().empty());
}

TEST_F(FileWritingTest, LeavesNothingBehindWhenTheTargetIsADirectory)
{
    EXPECT_THROW(Iacq::writeFile(m_directory, {'x'}), Iacq::Failure);
    EXPECT_TRUE(names().empty());
}

TEST_F(FileWritingTest, WritesToADeviceWithoutReplacingIt)
{
    EXPECT_NO_THROW(Iacq::writeFile("/dev/null", {'x'}));
    EXPECT_THROW(Iacq::writeFile("/dev/full", {'x'}), Iacq::Failure);
}

TEST_F(FileWritingTest, KeepsWhatWasThereWhenItFails)
{
    Iacq::writeFile(m_directory + "/a.raw", {'o', 'l', 'd'});
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    rlimit const small{2, limit.rlim_max};
    std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_THROW(Iacq::writeFile(m_directory + "/a.raw", {'n', 'e', 'w'}), Iacq::Failure);
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, SIG_DFL);
    EXPECT_EQ(contents("a.raw"), "old");
    EXPECT_EQ(names().size(), 1u);
}

TEST_F(FileWritingTest, KeepsALinkAndWritesWhatItLeadsTo)
{
    Iacq::writeFile(m_directory + "/picture", {'o', 'l', 'd'});
    ASSERT_EQ(symlink("picture", (m_directory + "/near").c_str()), 0);
    ASSERT_EQ(symlink((m_directory + "/near").c_str(), (m_directory + "/far").c_str()), 0);
    Iacq::writeFile(m_directory + "/far", {'n', 'e', 'w'});
    EXPECT_TRUE(isLink("near"));
    EXPECT_TRUE(isLink("far"));
    EXPECT_FALSE(isLink("picture"));
    EXPECT_EQ(contents("picture"), "new");
    EXPECT_EQ(names().size(), 3u);
}

TEST_F(FileWritingTest, MakesTheFileThatALinkLeadsTo)
{
    ASSERT_EQ(symlink("picture", (m_directory + "/link").c_str()), 0);
    Iacq::writeFile(m_directory + "/link", {'n', 'e', 'w'});
    EXPECT_TRUE(isLink("link"));
    EXPECT_EQ(contents("picture"), "new");
}

TEST_F(FileWritingTest, RefusesLinksThatLeadNowhere)
{
    ASSERT_EQ(symlink("round", (m_directory + "/round").c_str()), 0);
    EXPECT_THROW(Iacq::writeFile(m_directory + "/round", {'x'}), Iacq::Failure);
    EXPECT_TRUE(isLink("round"));
    EXPECT_EQ(names().size(), 1u);
}

TEST_F(FileWritingTest, KeepsThePermissionsOfAnExistingFile)
{
    for (mode_t const mode : {0640u, 0604u, 0666u, 0444u}) {
        Iacq::writeFile(m_directory + "/a.raw", {'o', 'l', 'd'});
        ASSERT_EQ(chmod((m_directory + "/a.raw").c_str(), mode), 0);
        Iacq::writeFile(m_directory + "/a.raw", {'n', 'e', 'w'});
        EXPECT_EQ(modeOf("a.raw"), mode);
        EXPECT_EQ(contents("a.raw"), "new");
    }
}

TEST_F(FileWritingTest, GivesANewFileTheUsualPermissions)
{
    mode_t const before = umask(027);
    Iacq::writeFile(m_directory + "/a.raw", {'n', 'e', 'w'});
    umask(before);
    EXPECT_EQ(modeOf("a.raw"), 0640u);
}

TEST_F(FileWritingTest, WritesWhereOnlyTheFileIsWritable)
{
    Iacq::writeFile(m_directory + "/a.raw", {'o', 'l', 'd', '!'});
    ASSERT_EQ(chmod((m_directory + "/a.raw").c_str(), 0666), 0);
    ASSERT_EQ(chmod(m_directory.c_str(), 0555), 0);
    EXPECT_EQ(writtenByAnOrdinaryUser("a.raw"), "");
    EXPECT_EQ(contents("a.raw"), "new");
    EXPECT_EQ(writtenByAnOrdinaryUser("b.raw"),
              "cannot write " + m_directory + "/b.raw: Permission denied");
    chmod(m_directory.c_str(), 0755);
    EXPECT_EQ(names().size(), 1u);
}

// As in /tmp: what belongs to others may be written there, but not be renamed away.
TEST_F(FileWritingTest, WritesAnothersFileInAStickyDirectory)
{
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root has two users' files";
    }
    Iacq::writeFile(m_directory + "/a.raw", {'o', 'l', 'd', '!'});
    ASSERT_EQ(chmod((m_directory + "/a.raw").c_str(), 0666), 0);
    ASSERT_EQ(chmod(m_directory.c_str(), 01777), 0);
    EXPECT_EQ(writtenByAnOrdinaryUser("a.raw"), "");
    EXPECT_EQ(contents("a.raw"), "new");
    EXPECT_EQ(modeOf("a.raw"), 0666u);
    EXPECT_EQ(names().size(), 1u);
}

TEST_F(FileWritingTest, LeavesNoHalfOfAPictureInPlace)
{
    Iacq::writeFile(m_directory + "/a.raw", {'o', 'l', 'd', '!'});
    ASSERT_EQ(chmod((m_directory + "/a.raw").c_str(), 0666), 0);
    ASSERT_EQ(chmod(m_directory.c_str(), 0555), 0);
    EXPECT_EQ(writtenByAnOrdinaryUser("a.raw", 2),
              "cannot write " + m_directory + "/a.raw: File too large");
    chmod(m_directory.c_str(), 0755);
    EXPECT_EQ(contents("a.raw"), "");
    EXPECT_EQ(names().size(), 1u);
}

} // namespace
