// SPDX-License-Identifier: MIT
#include "UdevHook.h"

#include <dlfcn.h>
#include <libudev.h>
#include <pthread.h>
#include <sys/select.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <ctime>
#include <map>
#include <mutex>
#include <set>
#include <thread>

namespace
{

struct State
{
    std::mutex mutex;
    std::condition_variable changed;
    std::map<UdevHook::Text, std::optional<std::string>> answers;
    std::function<void()> afterCreatingThread;
    std::function<void()> afterClosing;
    std::vector<std::string> monitorArguments;
    std::optional<UdevHook::Place> heldPlace;
    bool arrived = false;
};

State& state()
{
    static State instance;
    return instance;
}

using Lock = std::unique_lock<std::mutex>;

// A lock, or an atomic that orders, in a call that both the waiting and the stopping thread make
// would hide the monitors' own races from the thread sanitizer. So the state is only entered when
// a test asked for something, and what is always counted does not order anything.
class Number
{
public:
    int get() const { return m_value.load(std::memory_order_relaxed); }
    void set(int value) { m_value.store(value, std::memory_order_relaxed); }
    void add(int difference) { m_value.fetch_add(difference, std::memory_order_relaxed); }

private:
    std::atomic<int> m_value{0};
};

Number refusals; // A bit for each call.
Number scripted; // Whether there are answers.
Number holding;  // Whether there is a place to hold a thread at.
Number closing;  // Whether something is to be done after closing.
Number contextCount;
Number monitorCount;
Number deviceCount;
Number receptionCount;
Number threadCount;
Number pauseCount;

// What this thread got from a monitor and has not given back; umockdev has devices of its own.
thread_local udev_device* receivedDevice = nullptr;

template <typename Function>
Function* real(char const* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

int bitOf(UdevHook::Call call)
{
    return 1 << static_cast<int>(call);
}

bool refused(UdevHook::Call call)
{
    return (refusals.get() & bitOf(call)) != 0;
}

void passThrough(UdevHook::Place place)
{
    if (holding.get() == 0) {
        return;
    }
    Lock lock(state().mutex);
    if (state().heldPlace != place || state().arrived) {
        return;
    }
    state().arrived = true;
    state().changed.notify_all();
    state().changed.wait(lock, [] { return !state().heldPlace; });
}

/// Whether a place in the code is part of the program itself and not of a library that it uses.
bool isOurs(void const* code)
{
    Dl_info program{};
    Dl_info home{};
    dladdr(reinterpret_cast<void const*>(&state), &program);
    dladdr(code, &home);
    return home.dli_fbase == program.dli_fbase;
}

bool isOurs(void* (*function)(void*))
{
    return isOurs(reinterpret_cast<void const*>(function));
}

/// The scripted answer, in a text that outlives the test; udev's own when there is none.
char const* answerOr(UdevHook::Text text, udev_device* device, char const* udevs)
{
    static std::set<std::string> handedOut;
    if (scripted.get() == 0 || device != receivedDevice) {
        return udevs;
    }
    Lock const lock(state().mutex);
    auto const found = state().answers.find(text);
    if (found == state().answers.end()) {
        return udevs;
    }
    return found->second ? handedOut.insert(*found->second).first->c_str() : nullptr;
}

} // namespace

UdevHook::UdevHook() = default;

UdevHook::~UdevHook()
{
    refusals.set(0);
    scripted.set(0);
    closing.set(0);
    Lock const lock(state().mutex);
    state().answers.clear();
    state().afterCreatingThread = nullptr;
    state().afterClosing = nullptr;
}

void UdevHook::refuse(Call call, bool refusedFromNowOn)
{
    refusals.set(refusedFromNowOn ? refusals.get() | bitOf(call) : refusals.get() & ~bitOf(call));
}

void UdevHook::answer(Text text, std::optional<std::string> value)
{
    Lock const lock(state().mutex);
    state().answers[text] = std::move(value);
    scripted.set(1);
}

void UdevHook::afterCreatingThread(std::function<void()> action)
{
    Lock const lock(state().mutex);
    state().afterCreatingThread = std::move(action);
}

void UdevHook::afterClosing(std::function<void()> action)
{
    Lock const lock(state().mutex);
    state().afterClosing = std::move(action);
    closing.set(1);
}

int UdevHook::contexts()
{
    return contextCount.get();
}

int UdevHook::monitors()
{
    return monitorCount.get();
}

int UdevHook::devices()
{
    return deviceCount.get();
}

int UdevHook::receptions()
{
    return receptionCount.get();
}

int UdevHook::threads()
{
    return threadCount.get();
}

int UdevHook::pauses()
{
    return pauseCount.get();
}

std::vector<std::string> UdevHook::monitorArguments()
{
    Lock const lock(state().mutex);
    return state().monitorArguments;
}

HeldThread::HeldThread(UdevHook::Place place)
{
    Lock const lock(state().mutex);
    state().arrived = false;
    state().heldPlace = place;
    holding.set(1);
}

HeldThread::~HeldThread()
{
    release();
}

bool HeldThread::awaitArrival()
{
    Lock lock(state().mutex);
    auto const end = std::chrono::system_clock::now() + std::chrono::seconds(5);
    return state().changed.wait_until(lock, end, [] { return state().arrived; });
}

void HeldThread::release()
{
    holding.set(0);
    Lock const lock(state().mutex);
    state().heldPlace.reset();
    state().changed.notify_all();
}

extern "C" {

udev* udev_new()
{
    udev* const context = real<decltype(udev_new)>("udev_new")();
    contextCount.add(context != nullptr ? 1 : 0);
    return context;
}

udev* udev_unref(udev* context)
{
    contextCount.add(context != nullptr ? -1 : 0);
    return real<decltype(udev_unref)>("udev_unref")(context);
}

udev_monitor* udev_monitor_new_from_netlink(udev* context, char const* name)
{
    if (refused(UdevHook::Call::NewMonitor)) {
        errno = EMFILE;
        return nullptr;
    }
    udev_monitor* const monitor = real<decltype(udev_monitor_new_from_netlink)>(
        "udev_monitor_new_from_netlink")(context, name);
    monitorCount.add(monitor != nullptr ? 1 : 0);
    Lock const lock(state().mutex);
    state().monitorArguments = {name};
    return monitor;
}

udev_monitor* udev_monitor_unref(udev_monitor* monitor)
{
    monitorCount.add(monitor != nullptr ? -1 : 0);
    return real<decltype(udev_monitor_unref)>("udev_monitor_unref")(monitor);
}

int udev_monitor_filter_add_match_subsystem_devtype(udev_monitor* monitor, char const* subsystem,
                                                    char const* devtype)
{
    {
        Lock const lock(state().mutex);
        state().monitorArguments.emplace_back(subsystem);
        state().monitorArguments.emplace_back(devtype != nullptr ? devtype : "any");
    }
    return real<decltype(udev_monitor_filter_add_match_subsystem_devtype)>(
        "udev_monitor_filter_add_match_subsystem_devtype")(monitor, subsystem, devtype);
}

int udev_monitor_enable_receiving(udev_monitor* monitor)
{
    return refused(UdevHook::Call::EnableReceiving) ? -EPERM
                                                    : real<decltype(udev_monitor_enable_receiving)>(
                                                          "udev_monitor_enable_receiving")(monitor);
}

int udev_monitor_get_fd(udev_monitor* monitor)
{
    return refused(UdevHook::Call::MonitorDescriptor)
               ? -1
               : real<decltype(udev_monitor_get_fd)>("udev_monitor_get_fd")(monitor);
}

udev_device* udev_monitor_receive_device(udev_monitor* monitor)
{
    receptionCount.add(1);
    passThrough(UdevHook::Place::ReceiveDevice);
    udev_device* const device =
        real<decltype(udev_monitor_receive_device)>("udev_monitor_receive_device")(monitor);
    deviceCount.add(device != nullptr ? 1 : 0);
    receivedDevice = device;
    return device;
}

udev_device* udev_device_unref(udev_device* device)
{
    if (device != nullptr && device == receivedDevice) {
        deviceCount.add(-1);
        receivedDevice = nullptr;
    }
    return real<decltype(udev_device_unref)>("udev_device_unref")(device);
}

char const* udev_device_get_devnode(udev_device* device)
{
    if (device == receivedDevice) {
        passThrough(UdevHook::Place::DeviceNode);
    }
    return answerOr(UdevHook::Text::Node, device,
                    real<decltype(udev_device_get_devnode)>("udev_device_get_devnode")(device));
}

char const* udev_device_get_subsystem(udev_device* device)
{
    return answerOr(UdevHook::Text::Subsystem, device,
                    real<decltype(udev_device_get_subsystem)>("udev_device_get_subsystem")(device));
}

char const* udev_device_get_devtype(udev_device* device)
{
    return answerOr(UdevHook::Text::DeviceType, device,
                    real<decltype(udev_device_get_devtype)>("udev_device_get_devtype")(device));
}

char const* udev_device_get_action(udev_device* device)
{
    return answerOr(UdevHook::Text::Action, device,
                    real<decltype(udev_device_get_action)>("udev_device_get_action")(device));
}

int pipe2(int ends[2], int flags) noexcept
{
    // Sanitizers try addresses with a pipe of their own.
    if (isOurs(__builtin_return_address(0)) && refused(UdevHook::Call::Pipe)) {
        errno = EMFILE;
        return -1;
    }
    return real<int(int*, int)>("pipe2")(ends, flags);
}

int close(int fd)
{
    int const result = real<int(int)>("close")(fd);
    if (closing.get() != 0 && isOurs(__builtin_return_address(0))) {
        std::function<void()> action;
        {
            Lock const lock(state().mutex);
            action = state().afterClosing;
        }
        action();
    }
    return result;
}

ssize_t write(int fd, void const* bytes, size_t count)
{
    if (isOurs(__builtin_return_address(0))) {
        passThrough(UdevHook::Place::Write);
    }
    return real<ssize_t(int, void const*, size_t)>("write")(fd, bytes, count);
}

int clock_nanosleep(clockid_t clock, int flags, timespec const* wanted, timespec* remaining)
{
    pauseCount.add(isOurs(__builtin_return_address(0)) ? 1 : 0);
    return real<int(clockid_t, int, timespec const*, timespec*)>("clock_nanosleep")(
        clock, flags, wanted, remaining);
}

int select(int count, fd_set* reading, fd_set* writing, fd_set* failing, timeval* timeout)
{
    passThrough(UdevHook::Place::Select);
    return real<int(int, fd_set*, fd_set*, fd_set*, timeval*)>("select")(count, reading, writing,
                                                                         failing, timeout);
}

int pthread_create(pthread_t* thread, pthread_attr_t const* attributes, void* (*start)(void*),
                   void* argument) noexcept
{
    if (isOurs(start) && refused(UdevHook::Call::CreateThread)) {
        return EAGAIN;
    }
    int const result = real<int(pthread_t*, pthread_attr_t const*, void* (*)(void*), void*)>(
        "pthread_create")(thread, attributes, start, argument);
    std::function<void()> action;
    if (isOurs(start) && result == 0) {
        threadCount.add(1);
        Lock const lock(state().mutex);
        std::swap(action, state().afterCreatingThread);
    }
    if (action) {
        action();
    }
    return result;
}

int pthread_join(pthread_t thread, void** answer)
{
    threadCount.add(isOurs(__builtin_return_address(0)) ? -1 : 0);
    return real<int(pthread_t, void**)>("pthread_join")(thread, answer);
}
}
