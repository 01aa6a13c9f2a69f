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
    std::set<UdevHook::Call> refused;
    std::map<UdevHook::Text, std::optional<std::string>> answers;
    std::function<void()> afterCreatingThread;
    std::vector<std::string> monitorArguments;
    std::map<unsigned int, int> pauses;
    std::optional<UdevHook::Place> heldPlace;
    bool arrived = false;
    std::set<udev_device*> received; // Those that monitors got; umockdev has others.
    std::set<pthread_t> unjoined;
    int receptions = 0;
    int contexts = 0;
    int monitors = 0;
};

State& state()
{
    static State instance;
    return instance;
}

using Lock = std::unique_lock<std::mutex>;

template <typename Function>
Function* real(char const* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool refused(UdevHook::Call call)
{
    Lock const lock(state().mutex);
    return state().refused.count(call) != 0;
}

void passThrough(UdevHook::Place place)
{
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

bool isReceived(udev_device* device)
{
    Lock const lock(state().mutex);
    return state().received.count(device) != 0;
}

/// The scripted answer, in a text that outlives the test; udev's own when there is none.
char const* answerOr(UdevHook::Text text, udev_device* device, char const* udevs)
{
    static std::set<std::string> handedOut;
    if (!isReceived(device)) {
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
    Lock const lock(state().mutex);
    state().refused.clear();
    state().answers.clear();
    state().afterCreatingThread = nullptr;
}

void UdevHook::refuse(Call call, bool refusedFromNowOn)
{
    Lock const lock(state().mutex);
    if (refusedFromNowOn) {
        state().refused.insert(call);
    } else {
        state().refused.erase(call);
    }
}

void UdevHook::answer(Text text, std::optional<std::string> value)
{
    Lock const lock(state().mutex);
    state().answers[text] = std::move(value);
}

void UdevHook::afterCreatingThread(std::function<void()> action)
{
    Lock const lock(state().mutex);
    state().afterCreatingThread = std::move(action);
}

int UdevHook::contexts()
{
    Lock const lock(state().mutex);
    return state().contexts;
}

int UdevHook::monitors()
{
    Lock const lock(state().mutex);
    return state().monitors;
}

int UdevHook::devices()
{
    Lock const lock(state().mutex);
    return static_cast<int>(state().received.size());
}

int UdevHook::receptions()
{
    Lock const lock(state().mutex);
    return state().receptions;
}

int UdevHook::threads()
{
    Lock const lock(state().mutex);
    return static_cast<int>(state().unjoined.size());
}

int UdevHook::pauses(unsigned int microseconds)
{
    Lock const lock(state().mutex);
    return state().pauses[microseconds];
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
    Lock const lock(state().mutex);
    state().heldPlace.reset();
    state().changed.notify_all();
}

extern "C" {

udev* udev_new()
{
    udev* const context = real<decltype(udev_new)>("udev_new")();
    Lock const lock(state().mutex);
    state().contexts += context != nullptr ? 1 : 0;
    return context;
}

udev* udev_unref(udev* context)
{
    {
        Lock const lock(state().mutex);
        state().contexts -= context != nullptr ? 1 : 0;
    }
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
    Lock const lock(state().mutex);
    state().monitors += monitor != nullptr ? 1 : 0;
    state().monitorArguments = {name};
    return monitor;
}

udev_monitor* udev_monitor_unref(udev_monitor* monitor)
{
    {
        Lock const lock(state().mutex);
        state().monitors -= monitor != nullptr ? 1 : 0;
    }
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
    {
        Lock const lock(state().mutex);
        ++state().receptions;
    }
    passThrough(UdevHook::Place::ReceiveDevice);
    udev_device* const device =
        real<decltype(udev_monitor_receive_device)>("udev_monitor_receive_device")(monitor);
    if (device != nullptr) {
        Lock const lock(state().mutex);
        state().received.insert(device);
    }
    return device;
}

udev_device* udev_device_unref(udev_device* device)
{
    {
        Lock const lock(state().mutex);
        state().received.erase(device);
    }
    return real<decltype(udev_device_unref)>("udev_device_unref")(device);
}

char const* udev_device_get_devnode(udev_device* device)
{
    if (isReceived(device)) {
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

int pipe(int ends[2]) noexcept
{
    // Sanitizers try addresses with a pipe of their own.
    if (isOurs(__builtin_return_address(0)) && refused(UdevHook::Call::Pipe)) {
        errno = EMFILE;
        return -1;
    }
    return real<int(int*)>("pipe")(ends);
}

int usleep(useconds_t microseconds)
{
    {
        Lock const lock(state().mutex);
        ++state().pauses[microseconds];
    }
    return real<int(useconds_t)>("usleep")(microseconds);
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
        Lock const lock(state().mutex);
        state().unjoined.insert(*thread);
        std::swap(action, state().afterCreatingThread);
    }
    if (action) {
        action();
    }
    return result;
}

int pthread_join(pthread_t thread, void** answer)
{
    {
        Lock const lock(state().mutex);
        state().unjoined.erase(thread);
    }
    return real<int(pthread_t, void**)>("pthread_join")(thread, answer);
}
}
