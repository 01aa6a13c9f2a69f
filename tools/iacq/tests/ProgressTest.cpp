// SPDX-License-Identifier: MIT
#include "Progress.h"

#include <gmock/gmock.h>

#include <pty.h>
#include <unistd.h>

#include <algorithm>
#include <string>

namespace
{

using testing::EndsWith;
using testing::HasSubstr;

/// Makes a pseudo-terminal of standard error.
class Terminal
{
public:
    Terminal() : m_saved(dup(STDERR_FILENO))
    {
        int slave = -1;
        if (openpty(&m_master, &slave, nullptr, nullptr, nullptr) == 0) {
            dup2(slave, STDERR_FILENO);
            close(slave);
        }
    }
    ~Terminal()
    {
        restore();
        close(m_master);
    }
    Terminal(Terminal const&) = delete;
    Terminal& operator=(Terminal const&) = delete;

    void restore()
    {
        if (m_saved != -1) {
            dup2(m_saved, STDERR_FILENO);
            close(m_saved);
            m_saved = -1;
        }
    }

    /// Adds what there is to read, and waits for it; false when there will be no more.
    bool readInto(std::string& text) const
    {
        char buffer[256];
        ssize_t const size = read(m_master, buffer, sizeof buffer);
        text.append(buffer, static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
        return size > 0;
    }

private:
    int m_saved;
    int m_master = -1;
};

TEST(ProgressTest, ShowsALineOnATerminalAndTakesItAway)
{
    std::string text;
    Terminal terminal;
    {
        Iacq::Progress const progress("opening video0");
        while (text.find("opening video0") == std::string::npos && terminal.readInto(text)) {
        }
    }
    terminal.restore();
    while (terminal.readInto(text)) {
    }
    EXPECT_THAT(text, HasSubstr("iacq: opening video0 ."));
    EXPECT_THAT(text, EndsWith("\r\033[K"));
}

TEST(ProgressTest, ShowsNothingOffATerminal)
{
    testing::internal::CaptureStderr();
    {
        Iacq::Progress const progress("opening video0");
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

} // namespace
