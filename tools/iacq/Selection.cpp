// SPDX-License-Identifier: MIT
#include "Selection.h"

#include "CurrentSelection.h"
#include "Failure.h"
#include "Parsing.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>
#include <vector>

namespace Iacq
{

using ImageAcquisition::Session::Interval;
using ImageAcquisition::Session::parseFrameRate;
using ImageAcquisition::Session::parseInterval;
using ImageAcquisition::Session::parseSize;
using ImageAcquisition::Session::Size;

namespace
{

using namespace ImageAcquisition;

std::string sizeText(IFrameSize const& size)
{
    return std::to_string(size.width()) + "x" + std::to_string(size.height());
}

std::string intervalText(IFramePeriod const& period)
{
    return std::to_string(period.numerator()) + "/" + std::to_string(period.denominator());
}

/// Frames a second; 0 where the interval says nothing.
double frameRate(IFramePeriod const& period)
{
    return period.numerator() == 0 ? 0 : 1.0 * period.denominator() / period.numerator();
}

/// Frames a second with three digits after the point at most, enough to be found again by.
std::string frameRateText(IFramePeriod const& period)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", frameRate(period));
    std::string const digits = text;
    auto const last = digits.find_last_not_of('0');
    return digits.substr(0, digits[last] == '.' ? last : last + 1);
}

/// What there would have been, for the message that what was wanted is not among it.
class Offer
{
public:
    void add(std::string const& text)
    {
        if (std::find(m_texts.begin(), m_texts.end(), text) == m_texts.end()) {
            m_texts.push_back(text);
        }
    }

    /// With the unit behind them, if there is any.
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

/// The positions below @p number, the current one first.
std::vector<int> currentFirst(int number, std::optional<int> current)
{
    std::vector<int> positions;
    if (current) {
        positions.push_back(*current);
    }
    for (int position = 0; position < number; ++position) {
        if (position != current) {
            positions.push_back(position);
        }
    }
    return positions;
}

bool isInterval(IFramePeriod const& period, Interval const& wanted)
{
    // Equal as fractions: a user need not know how the driver writes 1/30.
    return 1ULL * period.numerator() * wanted.denominator ==
           1ULL * period.denominator() * wanted.numerator;
}

/// The position of the interval whose frame rate is the nearest to the wanted one, or -1 when none
/// is near enough.
int nearestFrameRate(IFrameSize const& size, double wanted)
{
    // The rates of television are a thousandth below whole numbers (30000/1001, written 29.97), and
    // half of that tells them apart from those; others are written with two digits (8.33).
    double nearest = std::max(0.005, wanted / 2002);
    int found = -1;
    for (int i = 0; i < size.periodNumber(); ++i) {
        double const distance = std::abs(frameRate(*size.period(i)) - wanted);
        if (distance < nearest) {
            nearest = distance;
            found = i;
        }
    }
    return found;
}

/// Looks for a selection that has everything that the user named.
class Search
{
public:
    Search(ICamera& camera, WantedSelection const& wanted)
        : m_camera(camera), m_wanted(wanted), m_current(currentSelection(camera))
    {
        parse();
    }

    void select()
    {
        for (int const format : formats()) {
            if (trySizes(format)) {
                return;
            }
        }
        // Without a wish, frames are taken as the camera is set.
        if (!m_wanted.isEmpty()) {
            fail();
        }
    }

private:
    void parse()
    {
        if (!m_wanted.size.empty() && !(m_size = parseSize(m_wanted.size))) {
            throw Failure(BadUsage, "'" + m_wanted.size + "' is no size; give it like 640x480");
        }
        if (!m_wanted.interval.empty() && !(m_interval = parseInterval(m_wanted.interval))) {
            throw Failure(BadUsage,
                          "'" + m_wanted.interval + "' is no interval; give it like 1/30");
        }
        if (!m_wanted.frameRate.empty() && !(m_frameRate = parseFrameRate(m_wanted.frameRate))) {
            throw Failure(BadUsage, "'" + m_wanted.frameRate +
                                        "' is no number of frames a second; give it like 30");
        }
    }

    std::vector<int> formats() const
    {
        Offer offered;
        std::optional<int> current;
        for (int i = 0; i < m_camera.formatNumber(); ++i) {
            if (m_wanted.format == m_camera.format(i)->name()) {
                return {i};
            }
            if (m_camera.format(i) == m_current.format) {
                current = i;
            }
            offered.add(m_camera.format(i)->name());
        }
        if (!m_wanted.format.empty()) {
            throw Failure(BadUsage, "the camera has no format '" + m_wanted.format + "'; it has" +
                                        offered.text());
        }
        return currentFirst(m_camera.formatNumber(), current);
    }

    bool trySizes(int format)
    {
        IImageFormat const& candidate = *m_camera.format(format);
        if (candidate.sizeNumber() == 0) {
            // A range of sizes: there is nothing to choose from, but what is set can be kept.
            return &candidate == m_current.format && !m_size && !m_interval && !m_frameRate;
        }
        std::optional<int> current;
        for (int i = 0; i < candidate.sizeNumber() && !current; ++i) {
            if (isSize(*candidate.frameSize(i), m_current.size->width(),
                       m_current.size->height())) {
                current = i;
            }
        }
        for (int const size : currentFirst(candidate.sizeNumber(), current)) {
            IFrameSize const& frameSize = *candidate.frameSize(size);
            m_sizes.add(sizeText(frameSize));
            if ((!m_size || isSize(frameSize, m_size->width, m_size->height)) &&
                tryIntervals(format, size)) {
                return true;
            }
        }
        return false;
    }

    static bool isSize(IFrameSize const& size, unsigned int width, unsigned int height)
    {
        return size.width() == width && size.height() == height;
    }

    bool tryIntervals(int format, int size)
    {
        m_sizeFound = true;
        IFrameSize const& frameSize = *m_camera.format(format)->frameSize(size);
        for (int i = 0; i < frameSize.periodNumber(); ++i) {
            IFramePeriod const& period = *frameSize.period(i);
            m_offered.add(m_frameRate ? frameRateText(period) : intervalText(period));
        }
        int const wanted =
            m_frameRate ? nearestFrameRate(frameSize, *m_frameRate) : wantedInterval(frameSize);
        bool const anyWillDo = !m_interval && !m_frameRate;
        return (wanted != -1 || anyWillDo) && set(format, size, std::max(wanted, 0));
    }

    /// The position of the interval that is named, or else of the present one; -1 when it is none
    /// of them.
    int wantedInterval(IFrameSize const& size) const
    {
        Interval const current{m_current.period->numerator(), m_current.period->denominator()};
        for (int i = 0; i < size.periodNumber(); ++i) {
            if (isInterval(*size.period(i), m_interval.value_or(current))) {
                return i;
            }
        }
        return -1;
    }

    bool set(int format, int size, int interval)
    {
        if (!m_camera.setCurrentImageFormat(format, size, interval)) {
            IImageFormat const& refused = *m_camera.format(format);
            throw Failure(CameraFailed, std::string("the camera refused the format ") +
                                            refused.name() + " " +
                                            sizeText(*refused.frameSize(size)));
        }
        return true;
    }

    [[noreturn]] void fail() const
    {
        std::string const whose =
            m_wanted.format.empty() ? "the camera" : "the format " + m_wanted.format;
        if (!m_sizeFound) {
            throw Failure(BadUsage, whose + " has no size " +
                                        (m_size ? m_wanted.size : "that can be chosen") +
                                        "; it has" + m_sizes.text());
        }
        throw Failure(BadUsage, (m_size ? "the size " + m_wanted.size : whose) + " has no " +
                                    (m_interval ? "interval " + m_wanted.interval
                                                : "frame rate " + m_wanted.frameRate) +
                                    "; it has" +
                                    m_offered.text(m_interval ? "" : " frames a second"));
    }

    ICamera& m_camera;
    WantedSelection const& m_wanted;
    CurrentSelection m_current;
    std::optional<Size> m_size;
    std::optional<Interval> m_interval;
    std::optional<double> m_frameRate;
    bool m_sizeFound = false;
    Offer m_sizes;
    Offer m_offered; ///< Intervals, or frame rates if one is wanted.
};

} // namespace

void select(ICamera& camera, WantedSelection const& wanted)
{
    if (!wanted.isEmpty() || currentSelection(camera).format->isInvalid()) {
        Search(camera, wanted).select();
    }
}

} // namespace Iacq
