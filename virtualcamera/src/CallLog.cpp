// SPDX-License-Identifier: MIT
#include "CallLog.h"

#include <utility>

namespace VirtualCamera
{

namespace
{
// A program that streams for days under the virtual camera must not grow without bound.
constexpr std::size_t mostRecords = 20000;
} // namespace

CallLog::CallLog(std::vector<Fault> const& faults, bool recording) : m_recording(recording)
{
    for (Fault const& fault : faults) {
        addFault(fault);
    }
}

int CallLog::countUse(CallId const& call)
{
    bool known = false;
    for (Counter& counter : m_counters) {
        if (counter.call == call) {
            ++counter.uses;
            known = true;
            break;
        }
    }
    if (!known) {
        m_counters.push_back({call, 1});
    }

    int error = 0;
    for (CountedFault& counted : m_faults) {
        if (!counted.fault.call.covers(call)) {
            continue;
        }
        ++counted.uses;
        bool const due = counted.uses == counted.fault.use ||
                         (counted.fault.fromThenOn && counted.uses > counted.fault.use);
        if (due && error == 0) {
            error = counted.fault.error;
        }
    }
    return error;
}

void CallLog::record(CallRecord record)
{
    if (!m_recording) {
        return;
    }
    if (m_records.size() >= mostRecords) {
        m_records.pop_front();
    }
    m_records.push_back(std::move(record));
}

void CallLog::clear()
{
    m_counters.clear();
    m_records.clear();
}

unsigned CallLog::countOf(CallId const& call) const
{
    unsigned uses = 0;
    for (Counter const& counter : m_counters) {
        if (call.covers(counter.call)) {
            uses += counter.uses;
        }
    }
    return uses;
}

} // namespace VirtualCamera
