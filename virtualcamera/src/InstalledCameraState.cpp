// SPDX-License-Identifier: MIT
#include "InstalledCamera.h"

#include "CameraDriver.h"

namespace VirtualCamera
{

std::int64_t InstalledCamera::controlValue(std::uint32_t controlId) const
{
    return m_device->locked([controlId](CameraDriver& device) {
        std::int64_t value = 0;
        device.controls().at(controlId).read(value);
        return value;
    });
}

std::string InstalledCamera::controlText(std::uint32_t controlId) const
{
    return m_device->locked([controlId](CameraDriver& device) {
        return device.controls().scriptedAt(controlId).text();
    });
}

std::uint32_t InstalledCamera::controlFlags(std::uint32_t controlId) const
{
    return m_device->locked([controlId](CameraDriver& device) {
        return device.controls().flagsOf(device.controls().at(controlId));
    });
}

void InstalledCamera::setControlValue(std::uint32_t controlId, std::int64_t value)
{
    m_device->locked(
        [controlId, value](CameraDriver& device) { device.controls().at(controlId).force(value); });
}

void InstalledCamera::setControlText(std::uint32_t controlId, std::string const& text)
{
    m_device->locked([controlId, &text](CameraDriver& device) {
        device.controls().scriptedAt(controlId).setText(text);
    });
}

void InstalledCamera::setControlFlags(std::uint32_t controlId, std::uint32_t flags)
{
    m_device->locked([controlId, flags](CameraDriver& device) {
        device.controls().scriptedAt(controlId).setFlags(flags);
    });
}

void InstalledCamera::setCurrentFormat(std::string const& pixelFormat, std::uint32_t width,
                                       std::uint32_t height)
{
    std::uint32_t const code = pixelFormatByName(pixelFormat);
    m_device->locked([=](CameraDriver& device) { device.formats().force(code, width, height); });
}

void InstalledCamera::setCurrentInterval(std::uint32_t numerator, std::uint32_t denominator)
{
    m_device->locked([=](CameraDriver& device) {
        device.formats().force(Interval{numerator, denominator});
    });
}

std::vector<ControlMapping> InstalledCamera::mappings() const
{
    return m_device->locked([](CameraDriver& device) { return device.extensionUnit().mappings(); });
}

std::vector<std::uint8_t> InstalledCamera::selectorBytes(std::uint8_t selector) const
{
    return m_device->locked([selector](CameraDriver& device) {
        return device.extensionUnit().selector(selector).current;
    });
}

void InstalledCamera::setSelectorBytes(std::uint8_t selector,
                                       std::vector<std::uint8_t> const& bytes)
{
    m_device->locked([selector, &bytes](CameraDriver& device) {
        SelectorScript& target = device.extensionUnit().selector(selector);
        target.current = bytes;
        target.current.resize(target.size);
    });
}

} // namespace VirtualCamera
