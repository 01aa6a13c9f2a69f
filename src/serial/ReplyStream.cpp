// SPDX-License-Identifier: MIT
#include "serial/ReplyStream.h"

#include "serial/UVCStringBuilder.h"

#include <algorithm>

namespace ImageAcquisition
{

namespace
{

constexpr int headerLength = UVCStringBuilder::__baseRequestLength;

/// More than a camera that answers has on its way, and little enough to be looked through at once.
constexpr int mostInput = 4096;

/// Whether the end of @p bytes may be the beginning of @p header.
bool endsWithBeginningOf(QByteArray const& header, QByteArray const& bytes)
{
    int length = std::min(bytes.size(), header.size() - 1);
    while (length > 0 && !bytes.endsWith(header.left(length))) {
        --length;
    }
    return length > 0;
}

} // namespace

void ReplyStream::expect(QByteArray const& request, int size)
{
    m_stale = m_input.size();
    if (!m_echoes) {
        drop(m_stale);
    }
    while (m_stale > 0 && step() == Step::Again) {
    }
    m_header = request.left(headerLength);
    m_size = size;
    m_sizes[m_header] = size;
}

void ReplyStream::append(QByteArray const& bytes)
{
    m_input.append(bytes);
    if (m_echoes && m_input.size() > mostInput) {
        drop(m_input.size() - mostInput);
        m_dataToCome = 0;
    }
}

bool ReplyStream::take(QByteArray& reply)
{
    if (!m_echoes) {
        return takeAsItComes(reply, false);
    }
    Step next = step();
    while (next == Step::Again) {
        next = step();
    }
    if (next == Step::Found) {
        handOut(reply);
    }
    return next == Step::Found;
}

bool ReplyStream::takeLast(QByteArray& reply)
{
    return m_echoes ? take(reply) : takeAsItComes(reply, true);
}

void ReplyStream::restart()
{
    drop(m_input.size());
    m_dataToCome = 0;
}

/// Passes over one thing that is not the reply.
ReplyStream::Step ReplyStream::step()
{
    if (m_input.isEmpty()) {
        return Step::Wait;
    }
    if (m_dataToCome > 0) {
        return passOverData();
    }
    if (isOwnReply() && isCutShort()) {
        drop(headerLength);
        return Step::Again;
    }
    if (isOwnReply()) {
        return m_input.size() < m_size ? Step::Wait : Step::Found;
    }
    if (!beginsLikeReply(m_input)) {
        drop(1);
        return Step::Again;
    }
    if (m_input.size() < headerLength) {
        return Step::Wait;
    }
    m_dataToCome = m_sizes[m_input.left(headerLength)] - headerLength;
    drop(headerLength);
    return Step::Again;
}

/// The data of a reply whose header was passed over. It may never come, when the camera cut the
/// reply short; then the header that is looked for stands in its place. Eight bytes of data may
/// look the same, but behind data stands a header again.
ReplyStream::Step ReplyStream::passOverData()
{
    bool const mayBeOwn = m_stale == 0 && m_header.startsWith(m_input.left(headerLength));
    if (mayBeOwn && m_input.size() < headerLength) {
        return Step::Wait;
    }
    bool const hidesHeader = mayBeOwn && m_dataToCome >= headerLength;
    if (hidesHeader && m_input.size() < m_size) {
        return Step::Wait;
    }
    if (mayBeOwn && !(hidesHeader && beginsLikeReply(m_input.mid(headerLength)))) {
        m_dataToCome = 0;
        return Step::Again;
    }
    int const here = m_stale > 0 ? m_stale : m_input.size();
    int const passed = std::min(m_dataToCome, here);
    m_dataToCome -= passed;
    drop(passed);
    return Step::Again;
}

/// Whether this is, or may yet become, the header of a request that was sent.
bool ReplyStream::beginsLikeReply(QByteArray const& bytes) const
{
    QByteArray const beginning = bytes.left(headerLength);
    auto const next = m_sizes.lower_bound(beginning);
    return next != m_sizes.end() && next->first.startsWith(beginning);
}

bool ReplyStream::isOwnReply() const
{
    return m_stale == 0 && m_input.startsWith(m_header);
}

/// Whether another reply begins within the data of this one.
bool ReplyStream::isCutShort() const
{
    QByteArray const next = m_input.mid(headerLength, headerLength);
    bool const overlaps = m_size > headerLength && m_size < 2 * headerLength;
    return overlaps && next.size() == headerLength && beginsLikeReply(next);
}

/// The reply of a camera of which it is not yet known whether it sends headers back. Where the
/// header stands behind other bytes, or may be about to, those are the rest of a late reply.
bool ReplyStream::takeAsItComes(QByteArray& reply, bool last)
{
    int const place = m_input.indexOf(m_header);
    if (place >= 0 && m_input.size() >= place + m_size) {
        m_echoes = true;
        drop(place);
        handOut(reply);
        return true;
    }
    bool const mayFollow =
        m_input.size() < mostInput && (place >= 0 || endsWithBeginningOf(m_header, m_input));
    if (m_input.size() < m_size || (mayFollow && !last)) {
        return false;
    }
    handOut(reply);
    return true;
}

void ReplyStream::handOut(QByteArray& reply)
{
    reply = m_input.left(m_size);
    drop(m_size);
}

void ReplyStream::drop(int count)
{
    m_input.remove(0, count);
    m_stale = std::max(0, m_stale - count);
}

} // namespace ImageAcquisition
