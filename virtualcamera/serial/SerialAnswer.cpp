// SPDX-License-Identifier: MIT
#include "SerialAnswer.h"

#include <algorithm>
#include <utility>

namespace VirtualCamera
{

namespace
{

std::ptrdiff_t upTo(std::size_t place, SerialBytes const& bytes)
{
    return static_cast<std::ptrdiff_t>(std::min(place, bytes.size()));
}

} // namespace

bool SerialPacket::complete() const
{
    return bytes.size() >= headerLength &&
           (code() != SetCur || bytes.size() >= headerLength + length());
}

SerialBytes SerialPacket::header() const
{
    return SerialBytes(bytes.begin(), bytes.begin() + headerLength);
}

SerialBytes SerialPacket::data() const
{
    return SerialBytes(bytes.begin() + headerLength, bytes.end());
}

bool SerialRequests::cover(SerialPacket const& packet) const
{
    return code.value_or(packet.code()) == packet.code() &&
           unit.value_or(packet.unit()) == packet.unit() &&
           selector.value_or(packet.selector()) == packet.selector();
}

SerialAnswer SerialAnswer::prompt()
{
    return {};
}

SerialAnswer SerialAnswer::late(Milliseconds delay)
{
    SerialAnswer answer;
    answer.m_delay = delay;
    return answer;
}

SerialAnswer SerialAnswer::split(std::size_t firstBytes, Milliseconds delay)
{
    SerialAnswer answer;
    answer.m_splitAt = firstBytes;
    answer.m_delay = delay;
    return answer;
}

SerialAnswer SerialAnswer::cutTo(std::size_t bytes)
{
    SerialAnswer answer;
    answer.m_cutAt = bytes;
    return answer;
}

SerialAnswer SerialAnswer::silence()
{
    return wrong({});
}

SerialAnswer SerialAnswer::wrong(SerialBytes bytes)
{
    SerialAnswer answer;
    answer.m_instead = std::move(bytes);
    return answer;
}

SerialAnswer SerialAnswer::doubled() const
{
    SerialAnswer answer = *this;
    answer.m_twice = true;
    return answer;
}

SerialAnswer SerialAnswer::behind(SerialBytes bytes) const
{
    SerialAnswer answer = *this;
    answer.m_before = std::move(bytes);
    return answer;
}

SerialAnswer SerialAnswer::withoutHeader() const
{
    SerialAnswer answer = *this;
    answer.m_headerless = true;
    return answer;
}

SerialBytes SerialAnswer::bytesFor(SerialBytes reply) const
{
    if (m_instead) {
        reply = *m_instead;
    }
    if (m_headerless) {
        std::fill_n(reply.begin(), std::min(SerialPacket::headerLength, reply.size()), 0);
    }
    if (m_cutAt) {
        reply.resize(std::min(*m_cutAt, reply.size()));
    }
    SerialBytes all = m_before;
    for (int times = m_twice ? 2 : 1; times > 0; --times) {
        all.insert(all.end(), reply.begin(), reply.end());
    }
    return all;
}

std::vector<SerialAnswer::Piece> SerialAnswer::pieces(SerialBytes reply) const
{
    reply = bytesFor(std::move(reply));
    if (reply.empty()) {
        return {};
    }
    if (!m_splitAt) {
        return {{std::move(reply), m_delay}};
    }
    auto const middle = reply.begin() + upTo(*m_splitAt, reply);
    return {{SerialBytes(reply.begin(), middle), Milliseconds(0)},
            {SerialBytes(middle, reply.end()), m_delay}};
}

} // namespace VirtualCamera
