// SPDX-License-Identifier: MIT
#pragma once

#include "IFrame.h"
#include "monitor/SelfPipe.h"
#include "system/VideoNode.h"
#include "system/ZeroedBytes.h"

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
    /// apart. False when the time is up.
    bool dataAvailable(int seconds, int microseconds) const;

protected:
    NodeReference node() const { return m_node; }

    /// Whether stopCapture() was called since setup().
    bool stopPending() const;

private:
    Type const m_type;
    NodeReference const m_node;
    SelfPipe m_wakeUp;
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
