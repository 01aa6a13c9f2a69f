// SPDX-License-Identifier: MIT
#include "CameraBuilder.h"

namespace VirtualCamera
{

namespace
{

/// A frame with one thing wrong.
template <typename Member, typename Value>
FrameFault faultOf(std::uint32_t frame, Member FrameFault::*member, Value value)
{
    FrameFault fault;
    fault.frame = frame;
    fault.*member = value;
    return fault;
}

} // namespace

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
    return withFrameFault(faultOf(frame, &FrameFault::lateMilliseconds, milliseconds));
}

CameraBuilder& CameraBuilder::withCorruptedFrame(std::uint32_t frame)
{
    return withFrameFault(faultOf(frame, &FrameFault::corrupted, true));
}

CameraBuilder& CameraBuilder::withShortFrame(std::uint32_t frame, std::uint32_t bytesUsed)
{
    return withFrameFault(faultOf(frame, &FrameFault::bytesUsed, bytesUsed));
}

CameraBuilder& CameraBuilder::withOverstatedFrame(std::uint32_t frame, std::uint32_t claimedBytes)
{
    return withFrameFault(faultOf(frame, &FrameFault::claimedBytes, claimedBytes));
}

CameraBuilder& CameraBuilder::withMissingFrame(std::uint32_t frame)
{
    return withFrameFault(faultOf(frame, &FrameFault::missing, true));
}

CameraBuilder& CameraBuilder::withoutFrames(std::uint32_t fromFrame)
{
    FrameFault fault = faultOf(fromFrame, &FrameFault::missing, true);
    fault.fromThenOn = true;
    return withFrameFault(fault);
}

CameraBuilder& CameraBuilder::withWrongIndex(std::uint32_t frame, std::uint32_t index)
{
    return withFrameFault(faultOf(frame, &FrameFault::index, index));
}

CameraBuilder& CameraBuilder::withWrongUserPointer(std::uint32_t frame, std::uintptr_t userPointer)
{
    return withFrameFault(faultOf(frame, &FrameFault::userPointer, userPointer));
}

CameraBuilder& CameraBuilder::withWrongLength(std::uint32_t frame, std::uint32_t length)
{
    return withFrameFault(faultOf(frame, &FrameFault::length, length));
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
