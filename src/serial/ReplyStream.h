// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>

#include <map>

namespace ImageAcquisition
{

/// Takes what a camera sends over its serial link apart into replies, so that one that comes late
/// is passed over as a whole and never taken, not even in part, for the answer to another request.
///
/// A reply is known by the header of its request, with which it begins. Not every camera need send
/// it back: until a reply has begun with it, replies are taken as they come.
class ReplyStream
{
public:
    /// From here on the reply to @p request is looked for, which has @p size bytes with its header.
    /// What was taken in before belongs to earlier requests.
    void expect(QByteArray const& request, int size);

    /// Takes in what has come. From a camera that floods the link only the last of it is kept.
    void append(QByteArray const& bytes);

    /// Hands out the reply when all of it is there.
    bool take(QByteArray& reply);

    /// The same when nothing more is waited for.
    bool takeLast(QByteArray& reply);

    /// Forgets what has come, for a port that is opened anew. That the camera sends headers back
    /// stays known.
    void restart();

private:
    enum class Step { Again, Wait, Found };

    Step step();
    Step passOverData();
    bool beginsLikeReply(QByteArray const& bytes) const;
    bool isOwnReply() const;
    bool isCutShort() const;
    bool takeAsItComes(QByteArray& reply, bool last);
    void handOut(QByteArray& reply);
    void drop(int count);

    QByteArray m_input;                ///< What has come and is not yet told apart.
    QByteArray m_header;               ///< Of the request whose reply is looked for.
    int m_size = 0;                    ///< Of that reply.
    std::map<QByteArray, int> m_sizes; ///< Of the reply to each request so far, by its header.
    int m_stale = 0;      ///< So many bytes of the input came before the request was sent.
    int m_dataToCome = 0; ///< Of a reply that is passed over and whose header is gone already.
    bool m_echoes = false;
};

} // namespace ImageAcquisition
