// SPDX-License-Identifier: MIT
#include "FrameWorker.h"

#include "Failure.h"

#include <gmock/gmock.h>

#include <csignal>
#include <future>
#include <string>
#include <utility>

namespace
{

using testing::ElementsAre;
using testing::Pair;

constexpr std::size_t plenty = 1000;

bool take(Iacq::FrameWorker& worker, std::string const& text)
{
    return worker.take({reinterpret_cast<unsigned char const*>(text.data()), text.size()},
                       {"GREY", static_cast<unsigned int>(text.size()), 1, 0});
}

/// Notes what it is given. The first piece of work takes until it is let go.
class Notes
{
public:
    Iacq::FrameWorker::Work work()
    {
        return [this](int number, Iacq::FrameCopy const& frame) {
            if (number == 1) {
                m_begun.set_value();
                m_letGo.get_future().wait();
            }
            EXPECT_EQ(frame.layout.width, frame.bytes.size());
            seen.emplace_back(number, std::string(frame.bytes.begin(), frame.bytes.end()));
        };
    }
    void waitForTheFirst() { m_begun.get_future().wait(); }
    void letGo() { m_letGo.set_value(); }
    /// Lets the first piece go; all that was seen until the last one is done.
    std::vector<std::pair<int, std::string>> finish(Iacq::FrameWorker& worker)
    {
        letGo();
        worker.finish();
        return seen;
    }

    std::vector<std::pair<int, std::string>> seen;

private:
    std::promise<void> m_begun;
    std::promise<void> m_letGo;
};

TEST(FrameWorkerTest, WorksOnCopiesWhileMoreAreTaken)
{
    Notes notes;
    Iacq::FrameWorker worker(plenty, notes.work());
    std::string frame = "one";
    EXPECT_TRUE(take(worker, frame));
    frame = "two";
    EXPECT_TRUE(take(worker, frame));
    notes.waitForTheFirst();
    frame = "three";
    EXPECT_TRUE(take(worker, frame));
    frame.clear();
    EXPECT_THAT(notes.finish(worker),
                ElementsAre(Pair(1, "one"), Pair(2, "two"), Pair(3, "three")));
}

TEST(FrameWorkerTest, TakesNoMoreThanMayWait)
{
    Notes notes;
    Iacq::FrameWorker worker(10, notes.work());
    EXPECT_TRUE(take(worker, "1234"));
    EXPECT_TRUE(take(worker, "5678"));
    notes.waitForTheFirst();
    EXPECT_FALSE(take(worker, "abc"));
    EXPECT_TRUE(take(worker, "90"));
    EXPECT_FALSE(take(worker, "x"));
    EXPECT_THAT(notes.finish(worker), ElementsAre(Pair(1, "1234"), Pair(2, "5678"), Pair(3, "90")));
}

TEST(FrameWorkerTest, TakesASingleFrameOfAnySize)
{
    Notes notes;
    Iacq::FrameWorker worker(2, notes.work());
    EXPECT_TRUE(take(worker, "12345"));
    notes.waitForTheFirst();
    EXPECT_FALSE(take(worker, "6"));
    EXPECT_THAT(notes.finish(worker), ElementsAre(Pair(1, "12345")));
}

TEST(FrameWorkerTest, HandsOnWhatWentWrongAndWorksOnNothingMore)
{
    int calls = 0;
    Iacq::FrameWorker worker(plenty, [&calls](int, Iacq::FrameCopy const&) {
        ++calls;
        throw Iacq::Failure(Iacq::NoFrame, "broken");
    });
    EXPECT_TRUE(take(worker, "one"));
    // The failure is there when the work is done, which may take a moment.
    EXPECT_THROW(
        while (true) { take(worker, "more"); }, Iacq::Failure);
    EXPECT_THROW(worker.finish(), Iacq::Failure);
    EXPECT_EQ(calls, 1);
}

TEST(FrameWorkerTest, FinishesWhatItIsWorkingOnWhenItGoes)
{
    Notes notes;
    {
        Iacq::FrameWorker worker(plenty, notes.work());
        EXPECT_TRUE(take(worker, "one"));
        notes.waitForTheFirst();
        notes.letGo();
    }
    EXPECT_THAT(notes.seen, ElementsAre(Pair(1, "one")));
}

bool holdsBack(int signal)
{
    sigset_t held;
    pthread_sigmask(SIG_SETMASK, nullptr, &held);
    return sigismember(&held, signal) == 1;
}

TEST(FrameWorkerTest, LeavesTheSignalsThatEndTheToolToItsThread)
{
    std::vector<bool> heldByThread;
    {
        Iacq::FrameWorker worker(plenty, [&](int, Iacq::FrameCopy const&) {
            heldByThread.push_back(holdsBack(SIGTERM));
            // As if it had got the other thread's mask.
            sigset_t all;
            sigfillset(&all);
            pthread_sigmask(SIG_SETMASK, &all, nullptr);
        });
        EXPECT_TRUE(holdsBack(SIGTERM));
        EXPECT_TRUE(holdsBack(SIGINT));
        EXPECT_TRUE(take(worker, "one"));
        EXPECT_TRUE(take(worker, "two"));
        worker.finish();
    }
    EXPECT_THAT(heldByThread, ElementsAre(false, false));
    EXPECT_FALSE(holdsBack(SIGTERM));
    EXPECT_FALSE(holdsBack(SIGINT));
}

} // namespace
