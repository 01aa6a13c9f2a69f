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

    bool recording() const { return _recording; }
    /// Counts a use; the result is the errno to fail with, or 0.
    int countUse(CallId const& call);
    void record(CallRecord record);
    void clear();

    std::deque<CallRecord> const& records() const { return _records; }
    unsigned countOf(CallId const& call) const;

    void addFault(Fault const& fault) { _faults.push_back({fault, 0}); }
    void clearFaults() { _faults.clear(); }

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

    bool _recording;
    std::vector<CountedFault> _faults;
    std::vector<Counter> _counters;
    std::deque<CallRecord> _records;
};

} // namespace VirtualCamera
