// SPDX-License-Identifier: MIT
#include "session/Frame.h"

#include "Transfer.h"

#include <IFrame.h>

#include <algorithm>
#include <utility>

namespace ImageAcquisition::Session
{

void Frame::giveBack() noexcept
{
    m_transfer->release(*std::exchange(m_frame, nullptr));
    m_transfer.reset();
}

Bytes Frame::bytes() const noexcept
{
    if (m_frame == nullptr) {
        return {};
    }
    return {std::as_const(*m_frame).bytePtr(),
            std::min(m_frame->bytesUsed(), m_frame->allocSize())};
}

Selection const& Frame::selection() const noexcept
{
    static Selection const none;
    return m_frame == nullptr ? none : m_transfer->layout().selection;
}

unsigned int Frame::bytesPerLine() const noexcept
{
    return m_frame == nullptr ? 0 : m_transfer->layout().bytesPerLine;
}

Frame::Clock::time_point Frame::captured() const noexcept
{
    return m_frame == nullptr ? Clock::time_point() : m_captured;
}

unsigned long long Frame::number() const noexcept
{
    return m_frame == nullptr ? 0 : m_frame->counter();
}

unsigned long long Frame::lostBefore() const noexcept
{
    return m_frame == nullptr ? 0 : m_lostBefore;
}

bool Frame::isDamaged() const noexcept
{
    return m_frame != nullptr && m_frame->isCorrupted();
}

bool Frame::isShort() const noexcept
{
    return m_frame != nullptr && m_transfer->isShort(*m_frame);
}

} // namespace ImageAcquisition::Session
