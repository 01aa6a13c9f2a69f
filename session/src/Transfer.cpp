// SPDX-License-Identifier: MIT
#include "Transfer.h"

#include "SystemFailure.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <utility>

namespace ImageAcquisition::Session
{

namespace
{

constexpr char operation[] = "start streaming";

/// Bytes of a picture in halves of those that its lines have in the first plane.
std::size_t halvesOf(std::string_view format)
{
    constexpr std::array<std::string_view, 4> quarterChroma{"NV12", "NV21", "YU12", "YV12"};
    constexpr std::array<std::string_view, 3> halfChroma{"NV16", "NV61", "422P"};
    auto const isIn = [&](auto const& list) {
        return std::find(list.begin(), list.end(), format) != list.end();
    };
    return isIn(quarterChroma) ? 3 : isIn(halfChroma) ? 4 : 2;
}

std::size_t pictureSizeOf(FrameLayout const& layout)
{
    return std::size_t(layout.bytesPerLine) * layout.selection.height *
           halvesOf(layout.selection.format) / 2;
}

} // namespace

BufferClaim::BufferClaim(std::shared_ptr<Connection> connection)
    : m_connection(std::move(connection))
{
    if (!m_connection->takeBuffers()) {
        throw Error({ErrorKind::Busy, operation, "frames of an earlier stream are still held",
                     m_connection->node()});
    }
}

Transfer::Transfer(std::shared_ptr<OpenCamera> owner, std::shared_ptr<Connection> connection,
                   int buffers)
    : m_owner(std::move(owner)), m_claim(std::move(connection)),
      m_camera(m_claim.connection().camera())
{
    m_owner->call([&](auto const&) { begin(buffers); });
}

void Transfer::begin(int buffers)
{
    m_layout = currentLayout(m_claim.connection());
    m_pictureSize = pictureSizeOf(m_layout);
    try {
        errno = 0;
        if (m_camera.setup(buffers) != 0) {
            fail("the camera grants no buffers", errno);
        }
        errno = 0;
        if (m_camera.startCapture() != 0) {
            fail("the camera does not start", errno);
        }
    } catch (...) {
        m_camera.cleanup();
        throw;
    }
}

std::string Transfer::needed() const
{
    Selection const& selection = m_layout.selection;
    unsigned long long const bytes = m_pictureSize * selection.rate.frames;
    if (bytes == 0) {
        return selection.text();
    }
    unsigned long long const tenths = bytes / selection.rate.seconds / 100'000;
    return selection.text() + ", " + std::to_string(tenths / 10) + "." +
           std::to_string(tenths % 10) + " MB a second";
}

void Transfer::fail(char const* reason, int error)
{
    throw streamingFailure(operation, found(), error, needed(), reason);
}

Transfer::~Transfer()
{
    if (m_process.isForked()) {
        return;
    }
    stop();
    m_owner->call([&](auto const&) { m_camera.cleanup(); });
}

void Transfer::release(IFrame& frame) noexcept
{
    // The driver takes none once it has stopped, and in a child the buffers are the parent's.
    if (m_isStopped.load(std::memory_order_relaxed) || m_process.isForked()) {
        return;
    }
    if (m_camera.releaseFrame(&frame) != 0) {
        m_refusal.store(errno, std::memory_order_relaxed);
    }
    m_lent.fetch_sub(1, std::memory_order_relaxed);
}

int Transfer::stop() noexcept
{
    if (m_isStopped.exchange(true)) {
        return 0;
    }
    errno = 0;
    return m_camera.stopCapture() == 0 ? 0 : errno;
}

} // namespace ImageAcquisition::Session
