// SPDX-License-Identifier: MIT
#include "StreamNegotiation.h"

#include "Descriptors.h"

#include <algorithm>

namespace UsbCamera
{

namespace
{

/// The host's driver asks for up to 32 packets a transfer: with payloads of that size, each
/// transfer is one payload.
constexpr std::size_t packetsPerPayload = 32;
constexpr std::size_t recordSize = 34;

std::size_t choose(std::size_t wanted, std::size_t count)
{
    return std::clamp<std::size_t>(wanted, 1, count) - 1;
}

std::uint32_t distance(std::uint32_t a, std::uint32_t b)
{
    return a > b ? a - b : b - a;
}

std::uint32_t nearestInterval(VideoSize const& size, std::uint32_t wanted)
{
    if (wanted == 0) {
        return size.intervals.front();
    }
    return *std::min_element(size.intervals.begin(), size.intervals.end(),
                             [wanted](std::uint32_t a, std::uint32_t b) {
                                 return distance(a, wanted) < distance(b, wanted);
                             });
}

} // namespace

StreamNegotiation::StreamNegotiation(Speed speed, bool hasIntervalRanges)
    : m_hasIntervalRanges(hasIntervalRanges),
      m_payloadSize(packetsPerPayload * bulkPacketSize(speed))
{
    m_probed.interval = m_probed.videoSize().intervals.front();
    m_committed = m_probed;
}

StreamChoice StreamNegotiation::choiceFrom(Bytes const& record) const
{
    StreamChoice choice;
    choice.format = choose(readLittle(record, 2, 1), videoFormats().size());
    choice.size = choose(readLittle(record, 3, 1), choice.videoFormat().sizes.size());
    auto const wanted = static_cast<std::uint32_t>(readLittle(record, 4, 4));
    auto const& intervals = choice.videoSize().intervals;
    choice.interval = m_hasIntervalRanges && wanted != 0
                          ? std::clamp(wanted, intervals.front(), intervals.back())
                          : nearestInterval(choice.videoSize(), wanted);
    return choice;
}

Bytes StreamNegotiation::describe(StreamChoice const& choice) const
{
    Bytes record{1, 0};
    appendLittle(record, choice.format + 1, 1);
    appendLittle(record, choice.size + 1, 1);
    appendLittle(record, choice.interval, 4);
    // Key frame rate, P frame rate, quality, window size, delay: of no meaning for these formats.
    appendLittle(record, 0, 8);
    appendLittle(record, 0, 2);
    appendLittle(record, frameBytes(choice.videoSize()), 4);
    appendLittle(record, m_payloadSize, 4);
    appendLittle(record, 48000000, 4);
    // Frame boundaries are marked in the payload headers; no further versions of the payloads.
    append(record, {3, 0, 0, 0});
    return record;
}

std::optional<Bytes> StreamNegotiation::read(std::uint8_t selector, std::uint8_t code) const
{
    if (selector != probeSelector && selector != commitSelector) {
        return std::nullopt;
    }
    StreamChoice choice = selector == probeSelector ? m_probed : m_committed;
    auto const& intervals = choice.videoSize().intervals;
    switch (code) {
    case getMin:
        choice.interval = intervals.front();
        return describe(choice);
    case getMax:
        choice.interval = intervals.back();
        return describe(choice);
    case getDef:
        choice = StreamChoice{};
        choice.interval = choice.videoSize().intervals.front();
        return describe(choice);
    case getCur:
        return describe(choice);
    case getLen:
        return Bytes{recordSize, 0};
    case getInfo:
        return Bytes{3};
    default:
        return std::nullopt;
    }
}

bool StreamNegotiation::write(std::uint8_t selector, Bytes const& data)
{
    if (data.size() < 26 || (selector != probeSelector && selector != commitSelector)) {
        return false;
    }
    (selector == probeSelector ? m_probed : m_committed) = choiceFrom(data);
    return true;
}

} // namespace UsbCamera
