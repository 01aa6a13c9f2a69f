// SPDX-License-Identifier: MIT
// One camera in several hands: one thread takes frames, two give them back, one uses the controls,
// and one ends it. Most of this is for ThreadSanitizer to judge.
#include "OneMethodCamera.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace
{

using namespace ImageAcquisition;

constexpr int buffers = 8;
constexpr unsigned int enough = 20000;

/// Frames on their way from the thread that takes them to the one that gives them back.
class Belt
{
public:
    struct Item
    {
        IFrame* frame = nullptr;
        unsigned long long counter = 0;
        unsigned char mark = 0;
    };

    void put(Item const& item)
    {
        std::lock_guard const lock(m_mutex);
        m_items.push_back(item);
        m_changed.notify_one();
    }
    void end()
    {
        std::lock_guard const lock(m_mutex);
        m_ended = true;
        m_changed.notify_all();
    }
    /// Waits for one: the oldest, or now and then the newest. False when there is none any more.
    bool take(Item& item)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_ended || !m_items.empty(); });
        if (m_items.empty()) {
            return false;
        }
        bool const newest = ++m_taken % 3 == 0;
        item = newest ? m_items.back() : m_items.front();
        newest ? m_items.pop_back() : m_items.pop_front();
        return true;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Item> m_items;
    unsigned int m_taken = 0;
    bool m_ended = false;
};

class HandsTest : public testing::TestWithParam<InputMethod::Type>
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(m_opened.method(), GetParam());
        ASSERT_TRUE(m_opened.setup(buffers));
        ASSERT_EQ(m_opened.camera.startCapture(), 0);
    }

    void TearDown() override
    {
        EXPECT_EQ(m_opened.camera.cleanup(), 0);
        EXPECT_EQ(m_opened.node.accounting().liveMappings, 0);
    }

    /// Takes frames until told to end, or until none comes, and writes into each.
    void takeFrames()
    {
        for (unsigned char mark = 1; !m_ending; ++mark) {
            IFrame* const frame = m_opened.camera.acquireFrame();
            if (frame->isInvalid()) {
                // All are on the belt, or it was stopped.
                continue;
            }
            frame->bytePtr()[0] = mark;
            m_belt.put({frame, frame->counter(), mark});
            ++m_taken;
        }
        m_belt.end();
    }

    void giveBack()
    {
        for (Belt::Item item; m_belt.take(item);) {
            m_unlike += item.frame->counter() == item.counter ? 0 : 1;
            m_unlike += item.frame->bytePtr()[0] == item.mark ? 0 : 1;
            m_refused += m_opened.camera.releaseFrame(item.frame) == 0 ? 0 : 1;
        }
    }

    void useControls()
    {
        auto& gain = m_opened.gain();
        for (int value = 0; !m_ending; value = (value + 1) % 10) {
            m_wrong += gain.setValue(value) && gain.value() == value ? 0 : 1;
            m_wrong += gain.updateState() && !gain.isInactive() ? 0 : 1;
        }
    }

    OneMethodCamera m_opened{cameraFor(GetParam()).withoutCallLog()};
    Belt m_belt;
    std::atomic<bool> m_ending{false};
    std::atomic<unsigned int> m_taken{0};
    std::atomic<unsigned int> m_unlike{0};
    std::atomic<unsigned int> m_refused{0};
    unsigned int m_wrong = 0; // Of the one thread that uses the controls.
};

INSTANTIATE_TEST_SUITE_P(, HandsTest,
                         testing::Values(InputMethod::MemoryMapping, InputMethod::UserPointers,
                                         InputMethod::Read),
                         nameOfMethod);

TEST_P(HandsTest, TakeGiveBackSetAndStopAtOnce)
{
    std::thread taking([this] { takeFrames(); });
    std::thread givingBack([this] { giveBack(); });
    std::thread givingBackToo([this] { giveBack(); });
    std::thread setting([this] { useControls(); });
    while (m_taken < enough) {
        std::this_thread::yield();
    }
    m_ending = true;
    EXPECT_EQ(m_opened.camera.stopCapture(), 0);
    taking.join();
    givingBack.join();
    givingBackToo.join();
    setting.join();
    EXPECT_EQ(m_unlike, 0u);
    EXPECT_EQ(m_refused, 0u);
    EXPECT_EQ(m_wrong, 0u);
    EXPECT_GE(m_opened.node.accounting().totalFrames, enough);
}

} // namespace
