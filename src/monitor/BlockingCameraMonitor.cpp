// SPDX-License-Identifier: MIT
#include "monitor/BlockingCameraMonitor.h"

#include "monitor/CameraEvent.h"
#include "system/DescriptorSet.h"
#include "system/Pause.h"

#include <chrono>

namespace ImageAcquisition
{

namespace
{

constexpr std::chrono::milliseconds leaveWait{50};
constexpr std::chrono::milliseconds waiterPoll{1};

class WaiterCount
{
public:
    explicit WaiterCount(std::atomic<int>& waiters) : m_waiters(waiters) { ++m_waiters; }
    ~WaiterCount() { --m_waiters; }
    WaiterCount(WaiterCount const&) = delete;
    WaiterCount& operator=(WaiterCount const&) = delete;

private:
    std::atomic<int>& m_waiters;
};

void fill(CameraEvent& event, udev_device* device)
{
    event.setDeviceSystemName(udev_device_get_devnode(device));
    event.setSubSystemName(udev_device_get_subsystem(device));
    event.setDeviceType(udev_device_get_devtype(device));
    event.setType(udev_device_get_action(device));
}

} // namespace

ICameraMonitor::~ICameraMonitor() = default;
IBlockingCameraMonitor::~IBlockingCameraMonitor() = default;

BlockingCameraMonitor::BlockingCameraMonitor() : m_udev(udev_new()) {}

BlockingCameraMonitor::~BlockingCameraMonitor() = default;

bool BlockingCameraMonitor::startMonitoring()
{
    // An earlier start may have left a monitor, a pipe and even a waiter.
    m_wakeUp.write();
    releaseUdevMonitor();
    bool const receiving = startUdevMonitor();
    bool const pipeOpen = openSelfPipe();
    bool const started = receiving && m_monitorFd != -1 && pipeOpen;
    m_monitoring = started;
    return started;
}

bool BlockingCameraMonitor::startUdevMonitor()
{
    udev_monitor* const monitor = udev_monitor_new_from_netlink(m_udev.get(), "udev");
    m_monitor = monitor;
    if (monitor == nullptr) {
        m_monitorFd = -1;
        return false;
    }
    udev_monitor_filter_add_match_subsystem_devtype(monitor, "video4linux", nullptr);
    bool const receiving = udev_monitor_enable_receiving(monitor) >= 0;
    m_monitorFd = udev_monitor_get_fd(monitor);
    return receiving;
}

bool BlockingCameraMonitor::stopMonitoring()
{
    m_monitoring = false;
    m_wakeUp.write();
    pauseFor(leaveWait);
    releaseUdevMonitor();
    closeSelfPipe();
    return true;
}

void BlockingCameraMonitor::releaseUdevMonitor()
{
    m_monitoring = false;
    // The scheduler may keep a waiter off the processor for longer than any fixed pause.
    while (m_waiters != 0) {
        pauseFor(waiterPoll);
    }
    UdevMonitor const released(m_monitor.exchange(nullptr));
}

bool BlockingCameraMonitor::getEvent(ICameraEvent* event) const
{
    auto* const cameraEvent = dynamic_cast<CameraEvent*>(event);
    if (cameraEvent == nullptr) {
        return false;
    }
    WaiterCount const waiting(m_waiters);
    if (!m_monitoring || !waitForDevice()) {
        return false;
    }
    UdevDevice const device(udev_monitor_receive_device(m_monitor));
    if (!device) {
        return false;
    }
    fill(*cameraEvent, device.get());
    return true;
}

bool BlockingCameraMonitor::waitForDevice() const
{
    int const monitorFd = m_monitorFd;
    DescriptorSet descriptors;
    descriptors.add(monitorFd);
    descriptors.add(m_wakeUp.readingEnd());
    return descriptors.waitReadable(nullptr) >= 1 && descriptors.isReady(monitorFd);
}

bool BlockingCameraMonitor::openSelfPipe()
{
    return m_wakeUp.open();
}

void BlockingCameraMonitor::closeSelfPipe()
{
    m_wakeUp.close();
}

} // namespace ImageAcquisition
