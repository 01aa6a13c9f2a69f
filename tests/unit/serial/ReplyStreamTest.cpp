// SPDX-License-Identifier: MIT
#include "serial/ReplyStream.h"

#include "serial/UVCStringBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace
{

using ImageAcquisition::ReplyStream;

/// A request and the camera's reply to it.
struct Exchange
{
    QByteArray request;
    QByteArray data;

    QByteArray reply() const { return request + data; }
    int size() const { return request.size() + data.size(); }
};

QByteArray hex(char const* digits)
{
    return QByteArray::fromHex(digits);
}

Exchange const focus{hex("a181000600010200"), hex("3412")};
Exchange const gain{hex("a181000400020200"), hex("6400")};
Exchange const window{hex("a181001400030800"), hex("0102030405060708")};
/// Its data are the header of the request for the focus.
Exchange const windowLikeFocus{window.request, focus.request};
Exchange const windowLikeItself{window.request, window.request};

class ReplyStreamTest : public testing::Test
{
protected:
    void expect(Exchange const& exchange)
    {
        m_stream.expect(exchange.request, exchange.size());
        m_reply = "untouched";
    }

    bool takes(QByteArray const& bytes)
    {
        m_stream.append(bytes);
        return m_stream.take(m_reply);
    }

    /// An exchange as it should be, after which the camera is known to send headers back.
    void learnThatHeadersComeBack()
    {
        expect(gain);
        ASSERT_TRUE(takes(gain.reply()));
        ASSERT_EQ(m_reply, gain.reply());
    }

    /// The reply in two pieces, cut at this place, is taken once both are there.
    void expectTaken(Exchange const& exchange, int cut)
    {
        EXPECT_FALSE(takes(exchange.reply().left(cut)));
        EXPECT_TRUE(takes(exchange.reply().mid(cut)));
        EXPECT_EQ(m_reply, exchange.reply());
    }

    /// Sends a request while a reply of an earlier one, of which so many bytes came before, goes on
    /// coming. Tells whether a reply was handed out, for every cut of what comes; one that is not
    /// the new request's is a failure.
    bool takesOnlyItsOwn(Exchange const& late, int before, Exchange const& own)
    {
        QByteArray const rest = late.reply().mid(before) + own.reply();
        bool always = true;
        for (int cut = 0; cut <= rest.size(); ++cut) {
            always = takesOnlyItsOwn(late, before, own, {rest.left(cut), rest.mid(cut)}) && always;
        }
        return always;
    }

    bool takesOnlyItsOwn(Exchange const& late, int before, Exchange const& own,
                         std::vector<QByteArray> const& pieces)
    {
        m_stream = {};
        learnThatHeadersComeBack();
        expect(late);
        m_stream.append(late.reply().left(before));
        expect(own);
        bool const taken = std::any_of(pieces.begin(), pieces.end(),
                                       [&](QByteArray const& piece) { return takes(piece); });
        if (taken) {
            EXPECT_EQ(m_reply.toHex(' ').toStdString(), own.reply().toHex(' ').toStdString())
                << before << " bytes before";
        }
        return taken;
    }

    ReplyStream m_stream;
    QByteArray m_reply;
};

TEST_F(ReplyStreamTest, TakesRepliesAsTheyComeUntilOneBeginsWithItsHeader)
{
    expect(focus);
    EXPECT_FALSE(takes(QByteArray(9, '\0')));
    EXPECT_TRUE(takes(QByteArray(1, '\7')));
    EXPECT_EQ(m_reply, QByteArray(9, '\0') + '\7');
    learnThatHeadersComeBack();
    expect(focus);
    EXPECT_FALSE(takes(QByteArray(30, '\0')));
    EXPECT_FALSE(m_stream.takeLast(m_reply));
    EXPECT_EQ(m_reply, "untouched");
}

TEST_F(ReplyStreamTest, WaitsForAHeaderThatMayFollowTheRestOfALateReply)
{
    expect(window);
    EXPECT_FALSE(takes(window.data.left(6) + window.request + window.data.left(2)));
    EXPECT_TRUE(takes(window.data.mid(2)));
    EXPECT_EQ(m_reply, window.reply());
    expect(focus);
    EXPECT_FALSE(takes(QByteArray(10, '\0'))) << "the camera is known to send headers back";
}

TEST_F(ReplyStreamTest, TakesWhatCameWhenTheHeaderThatMightFollowDoesNot)
{
    expect(focus);
    EXPECT_FALSE(takes(QByteArray(9, '\0') + '\xa1'));
    EXPECT_TRUE(m_stream.takeLast(m_reply));
    EXPECT_EQ(m_reply, QByteArray(9, '\0') + '\xa1');
}

TEST_F(ReplyStreamTest, StillTakesAnotherReplyOfACameraWhoseDataLookLikeTheHeader)
{
    QByteArray const unechoed = QByteArray(8, '\0') + windowLikeItself.data;
    for (int i = 0; i < 3; ++i) {
        expect(window);
        EXPECT_TRUE(takes(unechoed) || m_stream.takeLast(m_reply));
        EXPECT_EQ(m_reply, unechoed);
    }
}

TEST_F(ReplyStreamTest, PassesOverWhatPrecedesTheHeader)
{
    learnThatHeadersComeBack();
    expect(focus);
    EXPECT_FALSE(takes(QByteArray(300, '\x55')));
    EXPECT_FALSE(takes(gain.reply()));
    expectTaken(focus, 5);
}

TEST_F(ReplyStreamTest, FindsTheReplyBehindAFloodInShortTime)
{
    learnThatHeadersComeBack();
    QByteArray const flood(16 * 1024 * 1024, '\xa1');
    expect(window);
    EXPECT_FALSE(takes(flood));
    EXPECT_TRUE(takes(flood + window.reply()));
    EXPECT_EQ(m_reply, window.reply());
}

TEST_F(ReplyStreamTest, HandsOutNoMoreThanTheReply)
{
    learnThatHeadersComeBack();
    expect(focus);
    EXPECT_TRUE(takes(focus.reply() + focus.reply() + window.reply()));
    EXPECT_EQ(m_reply, focus.reply());
    expect(gain);
    EXPECT_FALSE(takes({}));
    EXPECT_TRUE(takes(gain.reply()));
    EXPECT_EQ(m_reply, gain.reply());
}

TEST_F(ReplyStreamTest, KnowsAReplyToARequestThatIsNoControlRequest)
{
    learnThatHeadersComeBack();
    m_stream.expect("REQUEST!", 9);
    EXPECT_FALSE(takes("RE"));
    EXPECT_TRUE(takes("QUEST!7"));
    EXPECT_EQ(m_reply, "REQUEST!7");
}

TEST_F(ReplyStreamTest, PassesOverALateReplyWhereverItIsCut)
{
    for (Exchange const& late : {focus, gain, window, windowLikeItself, windowLikeFocus}) {
        for (Exchange const& own : {focus, gain, window, windowLikeItself}) {
            // All of the reply to an equal request is as good an answer.
            int const first = late.request == own.request ? 1 : 0;
            for (int before = first; before <= late.size(); ++before) {
                EXPECT_TRUE(takesOnlyItsOwn(late, before, own))
                    << late.reply().toHex(' ').toStdString() << " before "
                    << own.reply().toHex(' ').toStdString();
            }
        }
    }
}

TEST_F(ReplyStreamTest, PassesOverALateReplyWhoseDataAreTheHeaderThatIsLookedFor)
{
    EXPECT_TRUE(takesOnlyItsOwn(windowLikeFocus, 0, focus));
    EXPECT_TRUE(takesOnlyItsOwn(windowLikeFocus, 8, focus));
}

TEST_F(ReplyStreamTest, NeedsNoEndOfALateReply)
{
    for (Exchange const& late : {focus, window, windowLikeFocus}) {
        for (int before = 0; before < late.size(); ++before) {
            EXPECT_TRUE(takesOnlyItsOwn(late, before, gain, {gain.reply()})) << before;
        }
    }
}

TEST_F(ReplyStreamTest, NeedsNoEndOfALateReplyBeforeOneWhoseDataLookLikeAHeader)
{
    Exchange const likeHeader{focus.request, hex("a181")};
    EXPECT_FALSE(takesOnlyItsOwn(window, 8, likeHeader, {likeHeader.reply()}))
        << "it may be the data of the late one, behind which another reply begins";
    expect(likeHeader);
    EXPECT_TRUE(takes(likeHeader.reply())) << "which the next attempt makes clear";
    EXPECT_EQ(m_reply, likeHeader.reply());
}

TEST_F(ReplyStreamTest, PassesOverALateReplyThatMakesAnotherHeaderWithTheOneBehindIt)
{
    // Its first five bytes and the header of a write make the header of a read: of unit 0x21.
    Exchange const write{hex("2101000400020200"), hex("6400")};
    EXPECT_TRUE(takesOnlyItsOwn(gain, 5, write, {write.reply()}));
}

TEST_F(ReplyStreamTest, PassesOverALateReplyBehindOthers)
{
    for (int before = 0; before <= focus.size(); ++before) {
        EXPECT_TRUE(takesOnlyItsOwn(
            focus, before, gain,
            {focus.reply().mid(before), windowLikeFocus.reply(), window.reply(), gain.reply()}));
    }
}

TEST_F(ReplyStreamTest, ForgetsARestOnceThePortIsOpenedAnew)
{
    learnThatHeadersComeBack();
    expect(window);
    EXPECT_FALSE(takes(window.reply().left(8)));
    m_stream.restart();
    Exchange const likeHeader{focus.request, hex("a181")};
    expect(likeHeader);
    EXPECT_TRUE(takes(likeHeader.reply()));
}

/// A camera that answers in order, at any time and in any pieces; it loses replies and doubles
/// them.
class RandomLink
{
public:
    explicit RandomLink(unsigned seed) : m_random(seed)
    {
        std::vector<unsigned char> const codes = {0x01, 0x81, 0x82, 0x83, 0x85, 0x86};
        for (unsigned char selector = 1; selector <= 5; ++selector) {
            unsigned char const code = codes[below(codes.size())];
            unsigned char const length = below(2) == 0 ? 8 : 2;
            QByteArray header = hex("a181000000010000");
            header[0] = static_cast<char>(code == 0x01 ? 0x21 : 0xa1);
            header[1] = static_cast<char>(code);
            header[3] = static_cast<char>(selector);
            header[6] = static_cast<char>(length);
            m_exchanges.push_back({header, {}});
        }
        for (Exchange& exchange : m_exchanges) {
            exchange.data = any().request.left(exchange.request[6]);
        }
    }

    Exchange const& any() { return m_exchanges[below(m_exchanges.size())]; }

    void answer(Exchange const& exchange)
    {
        for (std::size_t times = std::min<std::size_t>(below(16), 2); times > 0; --times) {
            m_underway += exchange.reply();
            if (below(8) != 0) {
                break;
            }
        }
    }

    /// What has come by now of what is under way.
    QByteArray arrived()
    {
        auto const size = static_cast<std::size_t>(m_underway.size());
        int const count = static_cast<int>(below(3) == 0 ? size : below(size + 1));
        QByteArray const bytes = m_underway.left(count);
        m_underway.remove(0, count);
        return bytes;
    }

    std::size_t below(std::size_t limit) { return m_random() % limit; }

private:
    std::mt19937 m_random;
    std::vector<Exchange> m_exchanges; ///< Their data are beginnings of each other's headers.
    QByteArray m_underway;
};

TEST_F(ReplyStreamTest, TakesNoOtherReplyHoweverTheLinkDeliversThem)
{
    int taken = 0;
    for (unsigned seed = 0; seed < 3000; ++seed) {
        RandomLink link(seed);
        m_stream = {};
        learnThatHeadersComeBack();
        for (int attempt = 0; attempt < 30; ++attempt) {
            Exchange const exchange = link.any();
            m_stream.append(link.arrived());
            expect(exchange);
            link.answer(exchange);
            for (std::size_t pieces = link.below(4); pieces > 0; --pieces) {
                if (takes(link.arrived())) {
                    ++taken;
                    ASSERT_EQ(m_reply, exchange.reply()) << "with seed " << seed;
                    break;
                }
            }
        }
    }
    EXPECT_GT(taken, 20000);
}

} // namespace
