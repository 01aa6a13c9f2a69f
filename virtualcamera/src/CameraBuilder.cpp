// SPDX-License-Identifier: MIT
#include "CameraBuilder.h"

#include "CameraDriver.h"
#include "ControlClass.h"
#include "Registry.h"

#include <linux/videodev2.h>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <utility>

namespace VirtualCamera
{

CameraBuilder::CameraBuilder(std::string node)
{
    m_script.node = std::move(node);
}

CameraBuilder::CameraBuilder(CameraScript script) : m_script(std::move(script)) {}

CameraBuilder aCamera(std::string node)
{
    return CameraBuilder(std::move(node));
}

InstalledCamera CameraBuilder::install() const
{
    auto device = std::make_shared<CameraDriver>(m_script);
    Registry::instance().plug(device);
    return InstalledCamera(std::move(device));
}

CameraBuilder& CameraBuilder::named(std::string card)
{
    m_script.card = std::move(card);
    return *this;
}

CameraBuilder& CameraBuilder::withDriver(std::string driver, std::uint32_t version)
{
    m_script.driver = std::move(driver);
    m_script.driverVersion = version;
    return *this;
}

CameraBuilder& CameraBuilder::withBusInfo(std::string busInfo)
{
    m_script.busInfo = std::move(busInfo);
    return *this;
}

CameraBuilder& CameraBuilder::withCapabilities(std::uint32_t capabilities,
                                               std::uint32_t deviceCapabilities)
{
    m_script.capabilities = capabilities;
    m_script.deviceCapabilities = deviceCapabilities;
    return *this;
}

FormatScript& CameraBuilder::format()
{
    if (m_script.formats.empty()) {
        throw std::logic_error("a camera's sizes and intervals come after a format");
    }
    return m_script.formats.back();
}

IntervalScript& CameraBuilder::intervals()
{
    FormatScript& last = format();
    if (last.sizeKind != RangeKind::Discrete) {
        return last.sizeRange.intervals;
    }
    if (last.sizes.empty()) {
        throw std::logic_error("a camera's intervals come after a size");
    }
    return last.sizes.back().intervals;
}

CameraBuilder& CameraBuilder::withFormat(std::string const& pixelFormat, std::string description,
                                         std::uint32_t flags)
{
    FormatScript added;
    added.pixelFormat = pixelFormatByName(pixelFormat);
    added.description = std::move(description);
    if (added.description.empty()) {
        added.description = pixelFormat;
    }
    added.flags = flags;
    m_script.formats.push_back(std::move(added));
    return *this;
}

CameraBuilder& CameraBuilder::withSize(std::uint32_t width, std::uint32_t height)
{
    format().sizes.push_back({width, height, {}});
    return *this;
}

CameraBuilder& CameraBuilder::withSteppedSizes(SizeRangeScript const& range)
{
    format().sizeKind = RangeKind::Stepwise;
    format().sizeRange = range;
    return *this;
}

CameraBuilder& CameraBuilder::withContinuousSizes(std::uint32_t minimumWidth,
                                                  std::uint32_t maximumWidth,
                                                  std::uint32_t minimumHeight,
                                                  std::uint32_t maximumHeight)
{
    format().sizeKind = RangeKind::Continuous;
    format().sizeRange = {minimumWidth, maximumWidth, 1, minimumHeight, maximumHeight, 1, {}};
    return *this;
}

CameraBuilder& CameraBuilder::withInterval(std::uint32_t numerator, std::uint32_t denominator)
{
    intervals().list.push_back({numerator, denominator});
    return *this;
}

CameraBuilder& CameraBuilder::withSteppedIntervals(Interval minimum, Interval maximum,
                                                   Interval step)
{
    intervals() = {RangeKind::Stepwise, {}, minimum, maximum, step};
    return *this;
}

CameraBuilder& CameraBuilder::withContinuousIntervals(Interval minimum, Interval maximum)
{
    intervals() = {RangeKind::Continuous, {}, minimum, maximum, {1, 1}};
    return *this;
}

CameraBuilder& CameraBuilder::withImageLayout(std::uint32_t bytesPerLine, std::uint32_t sizeImage)
{
    format().bytesPerLine = bytesPerLine;
    format().sizeImage = sizeImage;
    return *this;
}

CameraBuilder& CameraBuilder::withFrameBytes(std::vector<std::uint8_t> bytes)
{
    format().frameBytes = std::move(bytes);
    return *this;
}

CameraBuilder& CameraBuilder::currently(std::string const& pixelFormat, std::uint32_t width,
                                        std::uint32_t height)
{
    m_script.currentPixelFormat = pixelFormatByName(pixelFormat);
    m_script.currentWidth = width;
    m_script.currentHeight = height;
    return *this;
}

CameraBuilder& CameraBuilder::currentlyEvery(std::uint32_t numerator, std::uint32_t denominator)
{
    m_script.currentInterval = Interval{numerator, denominator};
    return *this;
}

CameraBuilder& CameraBuilder::withControl(ControlScript control)
{
    m_script.controls.push_back(std::move(control));
    return *this;
}

CameraBuilder& CameraBuilder::withClassHeadings()
{
    std::set<std::uint32_t> headings;
    for (ControlScript const& control : m_script.controls) {
        headings.insert(classHeadingId(control.id));
    }
    for (std::uint32_t id : headings) {
        auto const sameId = [id](ControlScript const& control) { return control.id == id; };
        bool const present =
            std::any_of(m_script.controls.begin(), m_script.controls.end(), sameId);
        if (!present && id < V4L2_CID_PRIVATE_BASE) {
            withControl(classHeading(id, controlClassName(id)));
        }
    }
    return *this;
}

CameraBuilder& CameraBuilder::withExtensionUnit(Guid const& guid,
                                                std::vector<SelectorScript> selectors)
{
    m_script.extensionUnit = ExtensionUnitScript{guid, std::move(selectors)};
    return *this;
}

CameraBuilder& CameraBuilder::withoutNextControl()
{
    m_script.nextControlSupported = false;
    return *this;
}

CameraBuilder& CameraBuilder::withStuckControlEnumerationAt(std::uint32_t controlId)
{
    m_script.stuckControlId = controlId;
    return *this;
}

CameraBuilder& CameraBuilder::withPlainPrivateControls(bool plain)
{
    m_script.privateControlsPlain = plain;
    return *this;
}

} // namespace VirtualCamera
