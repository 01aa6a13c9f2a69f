// SPDX-License-Identifier: MIT
#pragma once

#include "IFrame.h"
#include "monitor/SelfPipe.h"
#include "system/DescriptorSet.h"
#include "system/EarlierErrno.h"
#include "system/VideoNode.h"
#include "system/ZeroedBytes.h"

#include <cerrno>

namespace ImageAcquisition
{

/// One way to move frames from the driver to the caller. Order of calls: setup, startCapture,
/// acquireFrame and releaseFrame in turn, stopCapture, cleanup.
class InputMethod
{
public:
    enum Type : int { Read = 0, MemoryMapping = 1, UserPointers = 2 };

    class BaseFrame;
    class OwnedFrame;
    class InvalidFrame;

    /// The node stays the camera's.
    InputMethod(Type type, NodeReference node);
    InputMethod(InputMethod const&) = delete;
    InputMethod& operator=(InputMethod const&) = delete;
    virtual ~InputMethod();

    /// 0 or -1. The base opens the wake-up pipe; subclasses call it first.
    virtual int setup(int bufferCount, unsigned int imageSize);
    virtual int startCapture() = 0;
    /// A frame, or an invalid one; never null.
    virtual IFrame* acquireFrame() = 0;
    virtual int releaseFrame(IFrame* frame) = 0;
    /// Ends a wait in another thread and gives it a moment to leave; subclasses call it first.
    virtual int stopCapture();
    /// Closes the wake-up pipe; subclasses call it last.
    virtual int cleanup();

    Type type() const { return m_type; }

    /// Waits for the device or a stop request; true for either, which the next transfer tells
    /// apart. False when the time is up, which leaves errno alone, and when the wait failed.
    bool dataAvailable(int seconds, int microseconds) const
    {
        EarlierErrno const earlier;
        return watchDevice() && earlier.unlessFailed(waitForData(seconds, microseconds)) > 0;
    }

protected:
    NodeReference node() const { return m_node; }

    // The two halves of dataAvailable(), for who waits again and again.

    /// Makes sure that the wait is for the device and the wake-up pipe of now. False without a
    /// device.
    bool watchDevice() const
    {
        int const device = m_node.descriptor();
        int const wakeUp = m_wakeUp.readingEnd();
        if (device != m_watchedDevice || wakeUp != m_watchedWakeUp) {
            watch(device, wakeUp);
        }
        return device >= 0;
    }

    /// The device that the wait is for.
    int watchedDevice() const { return m_watchedDevice; }

    /// What select() answers once it is not interrupted; only -1 says anything about errno.
    int waitForData(int seconds, int microseconds) const
    {
        timeval timeout{};
        timeout.tv_sec = seconds;
        timeout.tv_usec = microseconds;
        int ready;
        do {
            ready = m_watched.waitReadable(&timeout);
        } while (ready == -1 && errno == EINTR);
        return ready;
    }

    /// Whether the last wait was ended by stopCapture(), or would have been.
    bool stopPending() const;

private:
    void watch(int device, int wakeUp) const;

    Type const m_type;
    NodeReference const m_node;
    SelfPipe m_wakeUp;
    // What is waited for, kept from frame to frame. Only the waiting thread uses it.
    mutable DescriptorSet m_watched;
    mutable int m_watchedDevice = -1;
    mutable int m_watchedWakeUp = -1;
};

/// What all frames answer alike.
class InputMethod::BaseFrame : public IFrame
{
public:
    unsigned int size() const override;
    unsigned long long counter() const override;
    FrameTimeStamp timeStamp() const override;
};

/// A frame with memory of its own, all of which counts as used.
class InputMethod::OwnedFrame : public virtual InputMethod::BaseFrame
{
public:
    explicit OwnedFrame(unsigned int size) : m_bytes(size) {}

    bool isCorrupted() const override { return false; }
    unsigned int allocSize() const override { return static_cast<unsigned int>(m_bytes.size()); }
    unsigned int bytesUsed() const override { return allocSize(); }
    unsigned char const* bytePtr() const override { return m_bytes.data(); }
    unsigned char* bytePtr() override { return m_bytes.data(); }

private:
    ZeroedBytes m_bytes;
};

/// Stands for a frame that could not be had, with a zeroed buffer of a plausible length, so that a
/// caller who does not look reads zeros.
class InputMethod::InvalidFrame : public InputMethod::OwnedFrame
{
public:
    using OwnedFrame::OwnedFrame;

    /// The one of 1 byte that stands for all.
    static InvalidFrame& getUniqueInstance();

    bool isInvalid() const override { return true; }
};

} // namespace ImageAcquisition
