// SPDX-License-Identifier: MIT
#include "camera/Camera.h"

#include "control/CameraControlFactory.h"
#include "control/ZorvaneExtensionUnit.h"
#include "input/InputMethodMemoryMapping.h"
#include "input/InputMethodRead.h"
#include "input/InputMethodUserPointers.h"
#include "system/EarlierErrno.h"
#include "system/UsbHandles.h"

namespace ImageAcquisition
{

namespace
{

constexpr unsigned char softwareResetRequest = 0xE0;

} // namespace

ICamera::~ICamera() = default;
IBlockingCamera::~IBlockingCamera() = default;

Camera::Camera(IDevice const* device) : m_device(device) {}

Camera::~Camera()
{
    m_node.close();
}

bool Camera::init()
{
    EarlierErrno const earlier;
    bool result = true;
    bool const opened = m_node.open(m_device.systemName());
    EarlierErrno const ofOpening;
    if (opened) {
        if (m_device.isaZorvaneDevice()) {
            // First, so that the driver lists the unit's controls too.
            m_extensionUnit.reset(createExtensionUnit());
        }
        result = buildMainControlSet();
        m_formatManager.init(m_node);
    }
    m_controls.setInvalid(
        std::unique_ptr<ICameraControl>(CameraControlFactory::createInvalidControl(*this)));
    m_inputMethod = createBestInputMethod();
    m_transfer = m_inputMethod ? m_inputMethod.get() : &m_noInputMethod;
    // Lists end, and transfer methods are ruled out, by calls that fail.
    (opened ? earlier : ofOpening).restore();
    return result;
}

bool Camera::buildMainControlSet()
{
    m_controls.fill(m_node);
    return true;
}

ExtensionUnit* Camera::createExtensionUnit() const
{
    return new ZorvaneExtensionUnit(m_node);
}

bool Camera::supportsMemoryMapping() const
{
    return InputMethodMemoryMapping::supported(m_node);
}

bool Camera::supportsUserPointers() const
{
    return InputMethodUserPointers::supported(m_node);
}

std::unique_ptr<InputMethod> Camera::createBestInputMethod() const
{
    if (m_device.supportsStreaming() && supportsMemoryMapping()) {
        return std::make_unique<InputMethodMemoryMapping>(m_node);
    }
    if (m_device.supportsStreaming() && supportsUserPointers()) {
        return std::make_unique<InputMethodUserPointers>(m_node);
    }
    if (m_device.supportsReadWrite()) {
        return std::make_unique<InputMethodRead>(m_node);
    }
    return nullptr;
}

bool Camera::softwareReset()
{
    unsigned char reply[16];
    IDevice const* const record = device();
    if (!record->isaZorvaneDevice()) {
        return false;
    }
    UsbContext const context = createUsbContext();
    if (!context) {
        return false;
    }
    UsbDeviceHandle const handle = openUsbDevice(context, record->vendorId(), record->productId());
    if (!handle) {
        return false;
    }
    // The camera may restart before it answers, so the answer tells nothing.
    readVendorRequest(handle, softwareResetRequest, reply, sizeof reply);
    return true;
}

ICameraControl* Camera::control(int position) const
{
    // A subclass may list fewer than there are.
    return position < controlNumber() ? m_controls.at(position) : m_controls.invalid();
}

int Camera::formatNumber() const
{
    return m_formatManager.formatNumber();
}

IImageFormat const* Camera::format(int position) const
{
    return m_formatManager.format(position);
}

IImageFormat const* Camera::currentImageFormat() const
{
    return format(m_formatManager.currentFormat());
}

IFrameSize const* Camera::currentFrameSize() const
{
    return m_formatManager.frameSizeOfDevice();
}

IFramePeriod const* Camera::currentFrameInterval() const
{
    return m_formatManager.framePeriodOfDevice();
}

bool Camera::setCurrentImageFormat(int format, int frameSize, int framePeriod)
{
    if (format < 0 || frameSize < 0 || framePeriod < 0) {
        return false;
    }
    return m_formatManager.setCurrentFormat(format, frameSize, framePeriod);
}

bool Camera::setCurrentImageFormat(char const* formatName, int width, int height, int numerator,
                                   int denominator)
{
    return m_formatManager.setCurrentFormat(formatName, width, height, numerator, denominator);
}

int Camera::setup(int bufferCount)
{
    // A device that offers no I/O method is not asked for the size of its images either.
    unsigned int const imageSize = m_inputMethod ? m_formatManager.currentSizeImage() : 0;
    return m_transfer->setup(bufferCount, imageSize);
}

} // namespace ImageAcquisition
