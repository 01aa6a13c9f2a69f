// SPDX-License-Identifier: MIT
#include "SelectionSearch.h"

#include "CurrentLayout.h"
#include "Names.h"
#include "OwnNode.h"
#include "SystemFailure.h"

#include <IFramePeriod.h>
#include <IFrameSize.h>
#include <IImageFormat.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <limits>
#include <optional>

namespace ImageAcquisition::Session
{

namespace
{

using Position = std::size_t;

SizeOffer sizeOffer(IFrameSize const& size)
{
    SizeOffer offer{{size.width(), size.width(), 1}, {size.height(), size.height(), 1}, {}, false};
    for (int i = 0; i < size.periodNumber(); ++i) {
        IFramePeriod const& period = *size.period(i);
        offer.rates.push_back({period.denominator(), std::max(period.numerator(), 1U)});
    }
    return offer;
}

FormatOffer formatOffer(IImageFormat const& format, OwnNode& node)
{
    FormatOffer offer{
        format.name(), format.description(), format.isCompressed(), format.isEmulated(), {}};
    for (int i = 0; i < format.sizeNumber(); ++i) {
        offer.sizes.push_back(sizeOffer(*format.frameSize(i)));
    }
    if (offer.sizes.empty()) {
        if (auto range = node.sizeRange(offer.format)) {
            offer.sizes.push_back(*std::move(range));
        }
    }
    for (SizeOffer& size : offer.sizes) {
        if (size.rates.empty()) {
            node.addRateRange(offer.format, size);
        }
    }
    return offer;
}

unsigned int distance(unsigned int a, unsigned int b)
{
    return a > b ? a - b : b - a;
}

/// The length of a range that is nearest to the wanted one.
unsigned int nearestLength(LengthRange const& range, unsigned int wanted)
{
    unsigned int const inside = std::clamp(wanted, range.minimum, range.maximum) - range.minimum;
    unsigned int const below = range.minimum + inside / range.step * range.step;
    bool const upward = inside % range.step > range.step / 2 && range.maximum - below >= range.step;
    return upward ? below + range.step : below;
}

std::string sizeText(SizeOffer const& size)
{
    std::string const least =
        std::to_string(size.width.minimum) + "x" + std::to_string(size.height.minimum);
    return size.isRange()
               ? least + ".." + std::to_string(size.width.maximum) + "x" +
                     std::to_string(size.height.maximum) + " in steps of " +
                     std::to_string(size.width.step) + "x" + std::to_string(size.height.step)
               : least;
}

/// What there would have been, for the message that what was wanted is not among it.
class Offered
{
public:
    void add(std::string const& text)
    {
        if (std::find(m_texts.begin(), m_texts.end(), text) == m_texts.end()) {
            m_texts.push_back(text);
        }
    }

    std::string text(std::string const& unit = "") const
    {
        std::string result;
        for (std::string const& text : m_texts) {
            result += " " + text;
        }
        return result.empty() ? " no list of them" : result + unit;
    }

private:
    std::vector<std::string> m_texts;
};

/// One of the things that can be selected, by their positions in the offers.
struct Choice
{
    Position format;
    Position size;
    unsigned int width;
    unsigned int height;
    FrameRate rate;                   ///< Not said where the camera tells no rates.
    std::optional<Position> rateItem; ///< Nothing where the rates are a range.
};

/// Looks for a selection that has everything that was named, and else what is set.
class Search
{
public:
    Search(std::vector<FormatOffer> const& offers, Selection const& present, Selection const& wish,
           Match match)
        : m_offers(offers), m_present(present), m_wish(wish), m_match(match)
    {
    }

    Choice find()
    {
        for (Position const format : formats()) {
            if (auto choice = m_match == Match::Nearest ? nearestSize(format) : exactSize(format)) {
                return *choice;
            }
        }
        fail();
    }

private:
    bool hasSize() const { return m_wish.width != 0 || m_wish.height != 0; }

    std::vector<Position> formats()
    {
        Offered offered;
        std::vector<Position> positions;
        for (Position i = 0; i < m_offers.size(); ++i) {
            std::string const& name = m_offers[i].format;
            if (!m_wish.format.empty() && isSameFormat(m_wish.format, name)) {
                return {i};
            }
            offered.add(name);
            positions.insert(name == m_present.format ? positions.begin() : positions.end(), i);
        }
        if (!m_wish.format.empty()) {
            throwUnsupported("the camera has no format '" + m_wish.format + "'; it has" +
                             offered.text());
        }
        return positions;
    }

    std::vector<Position> sizes(FormatOffer const& format) const
    {
        std::vector<Position> positions;
        for (Position i = 0; i < format.sizes.size(); ++i) {
            SizeOffer const& size = format.sizes[i];
            bool const isPresent = !size.isRange() && size.width.minimum == m_present.width &&
                                   size.height.minimum == m_present.height;
            positions.insert(isPresent ? positions.begin() : positions.end(), i);
        }
        return positions;
    }

    /// The size of an offer that is nearest to the wanted one, or else to the present one.
    Choice sizeIn(Position format, Position size) const
    {
        SizeOffer const& offer = m_offers[format].sizes[size];
        return {format,
                size,
                nearestLength(offer.width, hasSize() ? m_wish.width : m_present.width),
                nearestLength(offer.height, hasSize() ? m_wish.height : m_present.height),
                {},
                std::nullopt};
    }

    std::optional<Choice> exactSize(Position format)
    {
        for (Position const position : sizes(m_offers[format])) {
            SizeOffer const& offer = m_offers[format].sizes[position];
            Choice choice = sizeIn(format, position);
            m_sizes.add(sizeText(offer));
            bool const fits =
                !hasSize() || (choice.width == m_wish.width && choice.height == m_wish.height);
            m_sizeFound = m_sizeFound || fits;
            if (fits && chooseRate(offer, choice)) {
                return choice;
            }
        }
        return std::nullopt;
    }

    std::optional<Choice> nearestSize(Position format)
    {
        std::optional<Choice> nearest;
        unsigned long long least = std::numeric_limits<unsigned long long>::max();
        for (Position const position : sizes(m_offers[format])) {
            Choice const choice = sizeIn(format, position);
            unsigned long long const away = hasSize()
                                                ? 0ULL + distance(choice.width, m_wish.width) +
                                                      distance(choice.height, m_wish.height)
                                                : 0;
            bool const isEarlier =
                nearest && away == least && hasSize() && position < nearest->size;
            if (away < least || isEarlier) {
                least = away;
                nearest = choice;
            }
        }
        if (nearest) {
            chooseRate(m_offers[format].sizes[nearest->size], *nearest);
        }
        return nearest;
    }

    /// Chooses the rate that was named, or else the present one, or else the first. False when the
    /// named one must be met and is not there.
    bool chooseRate(SizeOffer const& size, Choice& choice)
    {
        for (FrameRate const rate : size.rates) {
            m_rates.add(rate.text());
        }
        FrameRate const wanted = m_wish.rate.isSaid() ? m_wish.rate : m_present.rate;
        if (size.rates.empty()) {
            return !m_wish.rate.isSaid() || m_match == Match::Nearest;
        }
        if (size.anyRate) {
            choice.rate = inRange(size, wanted);
        } else {
            choice.rateItem = nearestRate(size, wanted);
            choice.rate = size.rates[*choice.rateItem];
        }
        if (!m_wish.rate.isSaid() && !isSameRate(choice.rate, wanted)) {
            choice.rate = size.rates.front();
            choice.rateItem = size.anyRate ? std::nullopt : std::optional<Position>(0);
        }
        return !m_wish.rate.isSaid() || m_match == Match::Nearest ||
               isSameRate(choice.rate, wanted);
    }

    static FrameRate inRange(SizeOffer const& size, FrameRate wanted)
    {
        if (wanted.perSecond() < size.rates.front().perSecond()) {
            return size.rates.front();
        }
        return wanted.perSecond() > size.rates.back().perSecond() ? size.rates.back() : wanted;
    }

    static Position nearestRate(SizeOffer const& size, FrameRate wanted)
    {
        auto const away = [&](FrameRate rate) {
            return std::abs(rate.perSecond() - wanted.perSecond());
        };
        auto const nearest =
            std::min_element(size.rates.begin(), size.rates.end(), [&](FrameRate a, FrameRate b) {
                return away(a) < away(b) || (away(a) == away(b) && a.perSecond() > b.perSecond());
            });
        return static_cast<Position>(nearest - size.rates.begin());
    }

    [[noreturn]] void throwUnsupported(std::string const& reason) const
    {
        throw Error({ErrorKind::Unsupported, "select " + m_wish.text(), reason});
    }

    [[noreturn]] void fail() const
    {
        std::string const whose =
            m_wish.format.empty() ? "the camera" : "the format " + m_wish.format;
        std::string const size = std::to_string(m_wish.width) + "x" + std::to_string(m_wish.height);
        if (!m_sizeFound) {
            throwUnsupported(whose + " has no size " + (hasSize() ? size : "that can be chosen") +
                             "; it has" + m_sizes.text());
        }
        throwUnsupported((hasSize() ? "the size " + size : whose) + " has no frame rate " +
                         m_wish.rate.text() + "; it has" + m_rates.text(" frames a second"));
    }

    std::vector<FormatOffer> const& m_offers;
    Selection const& m_present;
    Selection const& m_wish;
    Match m_match;
    bool m_sizeFound = false;
    Offered m_sizes;
    Offered m_rates;
};

bool setListed(IBlockingCamera& camera, Choice const& choice)
{
    return camera.setCurrentImageFormat(static_cast<int>(choice.format),
                                        static_cast<int>(choice.size),
                                        static_cast<int>(choice.rateItem.value_or(0)));
}

/// Drivers such as uvcvideo let only one descriptor choose formats, the first that did, until it
/// gives its buffers back. Has the library's do that; false while a stream has need of them.
bool letGoOfFormats(Connection& connection)
{
    if (!connection.takeBuffers()) {
        return false;
    }
    connection.camera().setup(2);
    connection.camera().cleanup();
    connection.giveBuffersBack();
    return true;
}

/// Sets what was chosen; false, and `errno`, when the driver refused. What the library has no words
/// for is set by a descriptor of our own.
bool set(Connection& connection, std::vector<FormatOffer> const& offers, Choice const& choice)
{
    FormatOffer const& format = offers[choice.format];
    bool const isListed = connection.camera().format(static_cast<int>(choice.format))->sizeNumber();
    errno = 0;
    if (isListed && !setListed(connection.camera(), choice)) {
        return false;
    }
    bool const rateIsOpen =
        choice.rate.isSaid() && (!isListed || format.sizes[choice.size].anyRate);
    auto const setRest = [&] {
        OwnNode node(connection.node());
        bool const done =
            (isListed || node.setFormat(format.format, choice.width, choice.height)) &&
            (!rateIsOpen || node.setRate(choice.rate));
        return done ? 0 : errno;
    };
    int error = setRest();
    if (error == EBUSY && letGoOfFormats(connection)) {
        error = setRest();
    }
    errno = error;
    return error == 0;
}

/// Whether a camera that tells what it has set has something else than the wish.
bool differs(Selection const& actual, Selection const& wish, Choice const& choice,
             std::string const& format)
{
    bool const sizeDiffers = actual.width != 0 && (wish.width != 0 || wish.height != 0) &&
                             (actual.width != choice.width || actual.height != choice.height);
    bool const rateDiffers =
        actual.rate.isSaid() && wish.rate.isSaid() && !isSameRate(actual.rate, choice.rate);
    bool const formatDiffers =
        !actual.format.empty() && !wish.format.empty() && actual.format != format;
    return sizeDiffers || rateDiffers || formatDiffers;
}

} // namespace

// The rates of television are a thousandth below whole numbers (30000/1001, written 29.97), and
// half of that tells them apart from those; others are written with two digits (8.33).
bool isSameRate(FrameRate a, FrameRate b)
{
    double const wanted = b.perSecond();
    return std::abs(a.perSecond() - wanted) < std::max(0.005, wanted / 2002);
}

bool isSameFormat(std::string const& written, std::string const& format)
{
    return equalIgnoringCase(format.substr(0, format.find(' ')), written) ||
           equalIgnoringCase(format, written);
}

std::vector<FormatOffer> offersOf(Connection const& connection)
{
    OwnNode node(connection.node());
    std::vector<FormatOffer> offers;
    offers.reserve(static_cast<std::size_t>(connection.camera().formatNumber()));
    for (int i = 0; i < connection.camera().formatNumber(); ++i) {
        offers.push_back(formatOffer(*connection.camera().format(i), node));
    }
    return offers;
}

Selection selectOn(Connection& connection, Selection const& wish, Match match)
{
    Selection present = currentLayout(connection).selection;
    if (wish == Selection() && !present.format.empty()) {
        return present;
    }
    std::vector<FormatOffer> const offers = offersOf(connection);
    Choice const choice = Search(offers, present, wish, match).find();
    std::string const operation = "select " + wish.text();
    std::string const& format = offers[choice.format].format;
    std::string const chosen = Selection{format, choice.width, choice.height, choice.rate}.text();
    if (!set(connection, offers, choice)) {
        throw systemFailure(operation, connection.found(), errno, "the camera refused " + chosen);
    }
    Selection actual = currentLayout(connection).selection;
    if (match == Match::Exact && differs(actual, wish, choice, format)) {
        throw Error({ErrorKind::Refused, operation,
                     "asked for " + chosen + ", the driver set " + actual.text(),
                     connection.node()});
    }
    return actual;
}

} // namespace ImageAcquisition::Session
