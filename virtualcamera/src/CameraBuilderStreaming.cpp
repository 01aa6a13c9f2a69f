// SPDX-License-Identifier: MIT
#include "CameraBuilder.h"

namespace VirtualCamera
{

CameraBuilder& CameraBuilder::offeringMmap(bool offered)
{
    m_script.mmapOffered = offered;
    return *this;
}

CameraBuilder& CameraBuilder::offeringUserPointers(bool offered)
{
    m_script.userPointersOffered = offered;
    return *this;
}

CameraBuilder& CameraBuilder::offeringRead(bool offered)
{
    m_script.readOffered = offered;
    return *this;
}

CameraBuilder& CameraBuilder::grantingAtMost(std::uint32_t buffers)
{
    m_script.mostBuffers = buffers;
    return *this;
}

CameraBuilder& CameraBuilder::grantingAtLeast(std::uint32_t buffers)
{
    m_script.fewestBuffers = buffers;
    return *this;
}

CameraBuilder& CameraBuilder::paced(Pace pace)
{
    m_script.pace = pace;
    return *this;
}

CameraBuilder& CameraBuilder::withStillPattern()
{
    m_script.stillPattern = true;
    return *this;
}

CameraBuilder& CameraBuilder::failing(CallId call, int error, unsigned nthUse)
{
    m_script.faults.push_back({call, error, nthUse, false});
    return *this;
}

CameraBuilder& CameraBuilder::failingFrom(CallId call, int error, unsigned nthUse)
{
    m_script.faults.push_back({call, error, nthUse, true});
    return *this;
}

CameraBuilder& CameraBuilder::withFrameFault(FrameFault const& fault)
{
    m_script.frameFaults.push_back(fault);
    return *this;
}

CameraBuilder& CameraBuilder::withLateFrame(std::uint32_t frame, std::uint32_t milliseconds)
{
    FrameFault fault;
    fault.frame = frame;
    fault.lateMilliseconds = milliseconds;
    return withFrameFault(fault);
}

CameraBuilder& CameraBuilder::withCorruptedFrame(std::uint32_t frame)
{
    FrameFault fault;
    fault.frame = frame;
    fault.corrupted = true;
    return withFrameFault(fault);
}

CameraBuilder& CameraBuilder::withShortFrame(std::uint32_t frame, std::uint32_t bytesUsed)
{
    FrameFault fault;
    fault.frame = frame;
    fault.bytesUsed = bytesUsed;
    return withFrameFault(fault);
}

CameraBuilder& CameraBuilder::withOverstatedFrame(std::uint32_t frame, std::uint32_t claimedBytes)
{
    FrameFault fault;
    fault.frame = frame;
    fault.claimedBytes = claimedBytes;
    return withFrameFault(fault);
}

CameraBuilder& CameraBuilder::withMissingFrame(std::uint32_t frame)
{
    FrameFault fault;
    fault.frame = frame;
    fault.missing = true;
    return withFrameFault(fault);
}

CameraBuilder& CameraBuilder::withoutFrames(std::uint32_t fromFrame)
{
    FrameFault fault;
    fault.frame = fromFrame;
    fault.fromThenOn = true;
    fault.missing = true;
    return withFrameFault(fault);
}

CameraBuilder& CameraBuilder::withWrongIndex(std::uint32_t frame, std::uint32_t index)
{
    FrameFault fault;
    fault.frame = frame;
    fault.index = index;
    return withFrameFault(fault);
}

CameraBuilder& CameraBuilder::withWrongUserPointer(std::uint32_t frame, std::uintptr_t userPointer)
{
    FrameFault fault;
    fault.frame = frame;
    fault.userPointer = userPointer;
    return withFrameFault(fault);
}

CameraBuilder& CameraBuilder::withWrongLength(std::uint32_t frame, std::uint32_t length)
{
    FrameFault fault;
    fault.frame = frame;
    fault.length = length;
    return withFrameFault(fault);
}

CameraBuilder& CameraBuilder::vanishingAtFrame(std::uint32_t frame)
{
    m_script.vanishingFrame = frame;
    return *this;
}

CameraBuilder& CameraBuilder::withoutCallLog()
{
    m_script.callsLogged = false;
    return *this;
}

} // namespace VirtualCamera
