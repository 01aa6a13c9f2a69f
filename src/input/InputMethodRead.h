// SPDX-License-Identifier: MIT
#pragma once

#include "input/InputMethod.h"

#include <memory>
#include <mutex>
#include <vector>

namespace ImageAcquisition
{

/// Fetches each frame with one read into a buffer out of a pool. The last resort: such frames tell
/// neither their length nor their time.
class InputMethodRead : public InputMethod
{
public:
    class Frame;

    explicit InputMethodRead(NodeReference node);
    ~InputMethodRead() override;

    /// Fails, and builds nothing, whenever the wake-up pipe could be opened; the pool is built only
    /// when it could not. Kept as it is: docs/behaviour.md, Capture.
    int setup(int bufferCount, unsigned int imageSize) override;
    int startCapture() override;

    /// The frame on top of the pool, with its earlier contents if nothing came; the invalid frame
    /// only if there was none to fill. The frame belongs to the caller until it is released.
    IFrame* acquireFrame() override;
    int releaseFrame(IFrame* frame) override;
    int stopCapture() override;
    int cleanup() override;

    /// One attempt to read. True means stop trying, false means nothing has come yet.
    bool acquire(InputMethod::BaseFrame* frame) const;

private:
    /// The frame on top of the pool; null when there is none to fill.
    std::unique_ptr<InputMethod::BaseFrame> takeFromPool();

    // One thread may give frames back while another takes them.
    std::mutex m_poolLock;
    std::vector<std::unique_ptr<InputMethod::BaseFrame>> m_pool;
};

/// A buffer to read into.
class InputMethodRead::Frame : public InputMethod::OwnedFrame
{
public:
    using OwnedFrame::OwnedFrame;

    bool isInvalid() const override { return false; }
};

} // namespace ImageAcquisition
