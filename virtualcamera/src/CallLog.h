// SPDX-License-Identifier: MIT
#pragma once

#include "CallRecord.h"
#include "FaultScript.h"

#include <deque>
#include <vector>

namespace VirtualCamera
{

/// Counts the calls on one device, records them, and decides which of them fail by script.
class CallLog
{
public:
    CallLog(std::vector<Fault> const& faults, bool recording);

    bool recording() const { return m_recording; }
    /// Counts a use; the result is the errno to fail with, or 0.
    int countUse(CallId const& call);
    void record(CallRecord record);
    void clear();

    std::deque<CallRecord> const& records() const { return m_records; }
    unsigned countOf(CallId const& call) const;

    void addFault(Fault const& fault) { m_faults.push_back({fault, 0}); }
    void clearFaults() { m_faults.clear(); }

private:
    struct Counter
    {
        CallId call;
        unsigned uses;
    };
    struct CountedFault
    {
        Fault fault;
        unsigned uses;
    };

    bool m_recording;
    std::vector<CountedFault> m_faults;
    std::vector<Counter> m_counters;
    std::deque<CallRecord> m_records;
};

} // namespace VirtualCamera
