// SPDX-License-Identifier: MIT
#pragma once

#include "BufferQueue.h"
#include "CallLog.h"
#include "ControlState.h"
#include "ExtensionUnitState.h"
#include "FormatState.h"
#include "FramePainter.h"
#include "FrameSource.h"
#include "InstalledCamera.h"

#include <condition_variable>
#include <mutex>
#include <optional>

namespace VirtualCamera
{

/// What munmap needs to give back to the device that mapped it.
struct MappingTicket
{
    void* address = nullptr;
    std::size_t length = 0;
    unsigned generation = 0;
    unsigned index = 0;
};

/// A virtual camera's driver: one per plugged camera, shared by all its open descriptors. Results
/// are 0 (or a count) or a negative errno. Every public member takes the lock.
class CameraDriver
{
public:
    explicit CameraDriver(CameraScript script);

    std::string const& node() const { return m_script.node; }
    CameraScript const& script() const { return m_script; }
    bool gone();
    /// False while the camera's presence file is missing.
    bool present() const;
    void unplug();

    /// The result is the descriptor.
    int open(std::string const& path, int flags);
    int close(int file);
    int ioctl(int file, std::uint32_t request, void* argument);
    std::int64_t read(int file, void* target, std::size_t size);
    int map(int file, std::size_t length, int protection, int flags, std::int64_t offset,
            MappingTicket& ticket);
    int unmap(MappingTicket const& ticket);
    void forgetFile(int file);

    Accounting accounting() const;
    void deliverFrames(unsigned count);

    /// Runs `action(device)` under the lock, then lets waiting clients see what it changed.
    template <typename Action>
    auto locked(Action const& action)
    {
        std::lock_guard const lock(m_mutex);
        Announcement const announcement(*this);
        return action(*this);
    }

    CallLog& log() { return m_log; }
    ControlState& controls() { return m_controls; }
    FormatState& formats() { return m_formats; }
    ExtensionUnitState& extensionUnit() { return m_extensionUnit; }

private:
    using Lock = std::unique_lock<std::mutex>;

    struct OpenFile
    {
        int descriptor;
        std::optional<Nanoseconds> wakeTime; ///< What its timer is set to.
    };

    /// Announces the state that a call leaves behind, whichever way it ends.
    struct Announcement
    {
        explicit Announcement(CameraDriver& changed) : device(changed) {}
        ~Announcement() { device.announce(); }
        Announcement(Announcement const&) = delete;
        Announcement& operator=(Announcement const&) = delete;
        CameraDriver& device;
    };

    void catchUp();
    void announce();
    std::optional<Nanoseconds> wakeTime() const;
    void release(int file);

    bool settledByLibrary(int file, std::uint32_t request) const;
    int answer(Lock& lock, int file, std::uint32_t request, void* argument);
    int answerDevice(std::uint32_t request, void* argument);
    int answerFormat(std::uint32_t request, void* argument);
    int answerStream(Lock& lock, int file, std::uint32_t request, void* argument);
    int answerControl(std::uint32_t request, void* argument);

    int queryCapabilities(v4l2_capability& capability) const;
    int mapControl(uvc_xu_control_mapping const& mapping);
    int streamOn(int file, int type);
    int dequeue(Lock& lock, int file, v4l2_buffer& buffer);
    int awaitFrame(Lock& lock, int file);
    std::uint32_t fill(Buffer const& buffer, unsigned char* target, FrameFault const& fault);
    int nextReadImage(Lock& lock, int file);
    int checkRead(int file);

    CameraScript const m_script;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    CallLog m_log;
    FormatState m_formats;
    ControlState m_controls;
    ExtensionUnitState m_extensionUnit;
    BufferQueue m_queue;
    FrameSource m_source;
    FramePainter m_painter;
    std::vector<OpenFile> m_files;
    std::vector<unsigned char> m_readImage;
    std::size_t m_readPosition = 0;
    std::optional<std::uint32_t> m_readClaim; ///< What the next read is to return instead.
    int m_liveMappings = 0;
    unsigned m_totalOpens = 0;
    unsigned m_totalMappings = 0;
    unsigned m_totalFrames = 0;
    bool m_gone = false;
};

} // namespace VirtualCamera
