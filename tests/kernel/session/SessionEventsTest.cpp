// SPDX-License-Identifier: MIT
// Cameras that come and go, as real udev tells of them.
#include "SessionCamera.h"
#include "Shell.h"

#include <poll.h>

#include <algorithm>
#include <mutex>

using namespace KernelTest;

namespace
{

std::string textOf(ia::Event const& event)
{
    return std::string(ia::toText(event.action)) + " " + event.camera.description();
}

/// Collects what is called back.
class Notes
{
public:
    void add(ia::Event const& event)
    {
        std::lock_guard<std::mutex> const lock(m_mutex);
        m_texts.push_back(textOf(event));
    }
    std::vector<std::string> texts() const
    {
        std::lock_guard<std::mutex> const lock(m_mutex);
        return m_texts;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_texts;
};

class SessionEventsTest : public testing::Test
{
protected:
    void goAndComeBack() const
    {
        m_device.command("unplug");
        ASSERT_TRUE(m_device.waitUntilGone());
        m_device.plug();
    }

    EmulatedCameras const m_device{{"ordinary"}};
    std::string const m_camera = ia::findCamera("serial:ORD001").description();
    std::vector<std::string> const m_wanted{"removed " + m_camera, "added " + m_camera};
};

TEST_F(SessionEventsTest, AreHadOneByOneWithTheCamerasRecord)
{
    ia::Events events;
    EXPECT_FALSE(events.next(0ms)) << "a camera that is there is no news";
    goAndComeBack();
    std::vector<std::string> texts;
    while (auto const event = events.next(texts.size() < 2 ? 20s : 500ms)) {
        texts.push_back(textOf(*event));
        EXPECT_EQ(event->camera.id(), "1d6b:0102");
    }
    EXPECT_EQ(texts, m_wanted) << "the camera's metadata node is none";
}

TEST_F(SessionEventsTest, MakeTheDescriptorReadable)
{
    ia::Events events;
    pollfd entry{events.descriptor(), POLLIN, 0};
    EXPECT_EQ(::poll(&entry, 1, 0), 0);
    m_device.command("unplug");
    std::optional<ia::Event> event;
    while (!event && ::poll(&entry, 1, 20000) == 1) {
        event = events.next(0ms);
    }
    ASSERT_TRUE(event);
    EXPECT_EQ(textOf(*event), m_wanted.front());
    ASSERT_TRUE(m_device.waitUntilGone());
}

TEST_F(SessionEventsTest, AreCalledBack)
{
    Notes notes;
    ia::Events const events([&notes](ia::Event const& event) { notes.add(event); });
    goAndComeBack();
    EXPECT_TRUE(waitFor([&notes] { return notes.texts().size() == 2; }));
    EXPECT_EQ(notes.texts(), m_wanted);
}

TEST_F(SessionEventsTest, TellOfTheSameCamerasThatAreFoundThen)
{
    ia::Events events;
    goAndComeBack();
    std::optional<ia::Event> last;
    while (auto event = events.next(last ? 500ms : 20s)) {
        last = std::move(event);
    }
    ASSERT_TRUE(last);
    ia::Camera camera = ia::Camera::open(last->camera);
    EXPECT_TRUE(camera.stream().next(20s));
}

} // namespace
