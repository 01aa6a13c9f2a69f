// SPDX-License-Identifier: MIT
#pragma once

#include "CallLog.h"

namespace VirtualCamera
{

/// Collects what a call was given and how it ended. Without recording it costs nothing.
class RecordedCall
{
public:
    RecordedCall(CallLog& log, CallId const& call, int descriptor = -1);

    CallRecord& record() { return m_record; }
    /// Keeps the argument of an ioctl, with all that it points to.
    void sent(void const* argument);
    /// Files the record and gives `result`, 0 or a negative errno, back.
    int end(int result, void const* argument = nullptr);

private:
    CallLog& m_log;
    CallRecord m_record;
};

} // namespace VirtualCamera
