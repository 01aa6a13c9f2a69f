// SPDX-License-Identifier: MIT
#include "LossCount.h"

namespace Iacq
{

void LossCount::came(unsigned long long counter)
{
    // A driver that starts anew, or does not count at all, has lost nothing by that.
    if (m_last && counter > *m_last + 1) {
        m_missed += counter - *m_last - 1;
    }
    m_last = counter;
}

std::string LossCount::text() const
{
    if (m_missed + m_dropped == 0) {
        return "";
    }
    std::string text = "frames lost: ";
    if (m_missed > 0) {
        text += std::to_string(m_missed) + " by the driver";
    }
    if (m_dropped > 0) {
        text += (m_missed > 0 ? ", " : "") + std::to_string(m_dropped) + " by slow writing";
    }
    return text;
}

} // namespace Iacq
