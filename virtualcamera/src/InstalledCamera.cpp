// SPDX-License-Identifier: MIT
#include "InstalledCamera.h"

#include "CameraDriver.h"
#include "Registry.h"
#include "VirtualCamera.h"

#include <linux/videodev2.h>

#include <algorithm>
#include <utility>

namespace VirtualCamera
{

namespace
{

bool writesControl(CallRecord const& record)
{
    return record.call == CallId(VIDIOC_S_CTRL) || record.call == CallId(VIDIOC_S_EXT_CTRLS);
}

} // namespace

InstalledCamera::InstalledCamera(std::shared_ptr<CameraDriver> device) : m_device(std::move(device))
{
}

InstalledCamera::InstalledCamera(InstalledCamera&&) noexcept = default;

InstalledCamera& InstalledCamera::operator=(InstalledCamera&& other) noexcept
{
    std::swap(m_device, other.m_device);
    return *this;
}

InstalledCamera::~InstalledCamera()
{
    if (m_device) {
        Registry::instance().unplug(m_device);
    }
}

std::string const& InstalledCamera::node() const
{
    return m_device->node();
}

void InstalledCamera::unplug()
{
    Registry::instance().unplug(m_device);
}

Accounting InstalledCamera::accounting() const
{
    return m_device->accounting();
}

std::vector<CallRecord> InstalledCamera::calls() const
{
    return m_device->locked([](CameraDriver& device) {
        auto const& records = device.log().records();
        return std::vector<CallRecord>(records.begin(), records.end());
    });
}

std::vector<CallRecord> InstalledCamera::calls(CallId call) const
{
    std::vector<CallRecord> covered = calls();
    auto const other = [&call](CallRecord const& record) { return !call.covers(record.call); };
    covered.erase(std::remove_if(covered.begin(), covered.end(), other), covered.end());
    return covered;
}

unsigned InstalledCamera::countOf(CallId call) const
{
    return m_device->locked([&call](CameraDriver& device) { return device.log().countOf(call); });
}

std::optional<std::int64_t> InstalledCamera::lastControlValueSent() const
{
    std::optional<std::int64_t> last;
    for (CallRecord const& record : calls()) {
        if (writesControl(record) && !record.controls.empty()) {
            last = record.controls.back().value;
        }
    }
    return last;
}

std::optional<std::int64_t> InstalledCamera::lastControlValueSent(std::uint32_t controlId) const
{
    std::optional<std::int64_t> last;
    for (CallRecord const& record : calls()) {
        if (writesControl(record)) {
            for (ControlTransfer const& transfer : record.controls) {
                if (transfer.id == controlId) {
                    last = transfer.value;
                }
            }
        }
    }
    return last;
}

unsigned InstalledCamera::controlWrites(std::uint32_t controlId) const
{
    unsigned writes = 0;
    for (CallRecord const& record : calls()) {
        if (writesControl(record)) {
            for (ControlTransfer const& transfer : record.controls) {
                if (transfer.id == controlId) {
                    ++writes;
                }
            }
        }
    }
    return writes;
}

void InstalledCamera::clearLog()
{
    m_device->locked([](CameraDriver& device) { device.log().clear(); });
}

void InstalledCamera::fail(CallId call, int error, unsigned nthUse)
{
    Fault const fault{call, error, nthUse, false};
    m_device->locked([&fault](CameraDriver& device) { device.log().addFault(fault); });
}

void InstalledCamera::failFrom(CallId call, int error, unsigned nthUse)
{
    Fault const fault{call, error, nthUse, true};
    m_device->locked([&fault](CameraDriver& device) { device.log().addFault(fault); });
}

void InstalledCamera::stopFailing()
{
    m_device->locked([](CameraDriver& device) { device.log().clearFaults(); });
}

void InstalledCamera::deliverFrames(unsigned count)
{
    m_device->deliverFrames(count);
}

void reset()
{
    Registry::instance().reset();
}

Accounting totalAccounting()
{
    return Registry::instance().accounting();
}

} // namespace VirtualCamera
