// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

/// Stands between the monitors and the system, for failures that no machine makes on request and
/// for threads that are to be held up. Programs that use it compile UdevHook.cpp, whose functions
/// take precedence over the system's.
class UdevHook
{
public:
    enum class Call { NewMonitor, EnableReceiving, MonitorDescriptor, Pipe, CreateThread };
    enum class Text { Node, Subsystem, DeviceType, Action };
    enum class Place { Select, ReceiveDevice, DeviceNode, Write };

    UdevHook();
    UdevHook(UdevHook const&) = delete;
    UdevHook& operator=(UdevHook const&) = delete;
    /// All calls go through again.
    ~UdevHook();

    /// Makes a call fail, from now on or never more.
    void refuse(Call call, bool refused = true);
    /// What udev says of every device that a monitor receives; without a value it says nothing.
    void answer(Text text, std::optional<std::string> value);
    /// Runs once, after the library created a thread and before it learns so.
    void afterCreatingThread(std::function<void()> action);
    /// Runs after each descriptor that the library closes.
    void afterClosing(std::function<void()> action);

    /// Contexts and monitors of libudev that exist at present.
    static int contexts();
    static int monitors();
    /// Devices that monitors received and have not given back.
    static int devices();
    /// How often a monitor was asked for a device.
    static int receptions();
    /// Threads that the library created and has not joined.
    static int threads();
    /// How often the library has begun to pause.
    static int pauses();
    /// The name of the netlink group, the subsystem and the device type of the last monitor.
    static std::vector<std::string> monitorArguments();
};

/// Holds up the next thread that comes to a place until it is released.
class HeldThread
{
public:
    explicit HeldThread(UdevHook::Place place);
    HeldThread(HeldThread const&) = delete;
    HeldThread& operator=(HeldThread const&) = delete;
    ~HeldThread();

    /// Returns once a thread is held; false when none comes within 5 seconds.
    static bool awaitArrival();
    static void release();
};
