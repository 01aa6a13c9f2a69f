// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace Iacq
{

/// Counts the frames of a stream that are lost from its first frame on.
class LossCount
{
public:
    /// A frame came, with the driver's number: a gap means lost frames.
    void came(unsigned long long counter);

    /// A frame came, but could not be kept.
    void dropped() { ++m_dropped; }

    /// How many were lost, and where; empty when none was.
    std::string text() const;

private:
    std::optional<unsigned long long> m_last;
    unsigned long long m_missed = 0;
    unsigned long long m_dropped = 0;
};

} // namespace Iacq
