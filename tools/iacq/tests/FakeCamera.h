// SPDX-License-Identifier: MIT
#pragma once

#include <ICamera.h>
#include <ICameraControl.h>
#include <IFramePeriod.h>
#include <IFrameSize.h>
#include <IImageFormat.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// A control's state, to be mixed into one of the typed interfaces.
template <typename Interface>
class FakeControl : public virtual Interface
{
public:
    using Type = ImageAcquisition::ICameraControl::Type;

    unsigned int id() const override { return 0; }
    Type type() const override { return Type::Invalid; }
    ImageAcquisition::ICameraControl::Family family() const override
    {
        return ImageAcquisition::ICameraControl::Unknown;
    }
    char const* name() const override { return controlName.c_str(); }
    char const* typeString() const override { return ""; }
    char const* familyString() const override { return ""; }
    bool isDisabled() const override { return disabled; }
    bool isGrabbed() const override { return grabbed; }
    bool isReadOnly() const override { return readOnly; }
    bool needsClassUpdate() const override { return false; }
    bool isInactive() const override { return inactive; }
    bool bestAsSlider() const override { return false; }
    bool isWriteOnly() const override { return false; }
    bool isVolatile() const override { return false; }
    bool hasPayload() const override { return false; }
    bool executesOnWrite() const override { return false; }
    bool updateState() override
    {
        inactive = inactiveByNow.value_or(inactive);
        return true;
    }

    std::string controlName;
    bool disabled = false;
    bool grabbed = false;
    bool readOnly = false;
    bool inactive = false;
    std::optional<bool> inactiveByNow; ///< What updateState() finds.
};

class FakePeriod : public ImageAcquisition::IFramePeriod
{
public:
    FakePeriod(unsigned int above, unsigned int below) : m_fraction(above, below) {}
    unsigned int numerator() const override { return m_fraction.first; }
    unsigned int denominator() const override { return m_fraction.second; }
    bool isInvalid() const override { return false; }

private:
    std::pair<unsigned int, unsigned int> m_fraction;
};

class FakeSize : public ImageAcquisition::IFrameSize
{
public:
    FakeSize(unsigned int width, unsigned int height, std::vector<FakePeriod> periods)
        : m_width(width), m_height(height), m_periods(std::move(periods))
    {
    }
    bool isInvalid() const override { return false; }
    unsigned int width() const override { return m_width; }
    unsigned int height() const override { return m_height; }
    int bytesPerLine() const override { return 0; }
    int periodNumber() const override { return static_cast<int>(m_periods.size()); }
    ImageAcquisition::IFramePeriod const* period(int index) const override
    {
        return index >= 0 && index < periodNumber() ? &m_periods[static_cast<std::size_t>(index)]
                                                    : ImageAcquisition::IFramePeriod::invalid();
    }

private:
    unsigned int m_width;
    unsigned int m_height;
    std::vector<FakePeriod> m_periods;
};

class FakeFormat : public ImageAcquisition::IImageFormat
{
public:
    FakeFormat(std::string name, std::vector<FakeSize> sizes)
        : m_name(std::move(name)), m_sizes(std::move(sizes))
    {
    }
    bool isInvalid() const override { return false; }
    bool isCompressed() const override { return false; }
    bool isEmulated() const override { return false; }
    char const* name() const override { return m_name.c_str(); }
    char const* description() const override { return ""; }
    int sizeNumber() const override { return static_cast<int>(m_sizes.size()); }
    ImageAcquisition::IFrameSize const* frameSize(int index) const override
    {
        return index >= 0 && index < sizeNumber() ? &m_sizes[static_cast<std::size_t>(index)]
                                                  : ImageAcquisition::IFrameSize::invalid();
    }

private:
    std::string m_name;
    std::vector<FakeSize> m_sizes;
};

/// A camera of lists. What is set on it are positions; -1 stands for something off the list.
class FakeCamera : public ImageAcquisition::ICamera
{
public:
    using Control = ImageAcquisition::ICameraControl;

    FakeCamera();
    ~FakeCamera() override;

    std::vector<Control*> controls; ///< Owned by the test.
    std::vector<FakeFormat> formats;
    int setFormat = -1;
    int setSize = -1;
    int setInterval = -1;
    int timesSet = 0;
    bool refusing = false;

    int controlNumber() const override { return static_cast<int>(controls.size()); }
    ImageAcquisition::IDevice const* device() const override { return nullptr; }
    Control* control(int position) const override;
    Control* control(char const* name) const override;
    Control* invalidControl() const override;
    int formatNumber() const override { return static_cast<int>(formats.size()); }
    ImageAcquisition::IImageFormat const* format(int position) const override;
    ImageAcquisition::IImageFormat const* currentImageFormat() const override;
    ImageAcquisition::IFrameSize const* currentFrameSize() const override;
    ImageAcquisition::IFramePeriod const* currentFrameInterval() const override;
    bool softwareReset() override { return false; }
    bool setCurrentImageFormat(int format, int frameSize, int framePeriod) override;
    bool setCurrentImageFormat(char const*, int, int, int, int) override { return false; }

    Control* autoContrastBrightnessControl() const override { return invalidControl(); }
    Control* autoExposureControl() const override { return invalidControl(); }
    Control* autoFocusControl() const override { return invalidControl(); }
    Control* autoHueControl() const override { return invalidControl(); }
    Control* autoSaturationControl() const override { return invalidControl(); }
    Control* autoSharpnessControl() const override { return invalidControl(); }
    Control* autoWhiteBalanceControl() const override { return invalidControl(); }
    Control* brightnessControl() const override { return invalidControl(); }
    Control* cameraErrorControl() const override { return invalidControl(); }
    Control* exposureAbsoluteControl() const override { return invalidControl(); }
    Control* gainControl() const override { return invalidControl(); }
    Control* focusControl() const override { return invalidControl(); }
    Control* keepAliveControl() const override { return invalidControl(); }
    Control* lightIntensityControl() const override { return invalidControl(); }
    Control* lightModeControl() const override { return invalidControl(); }
    Control* triggerAutoControl() const override { return invalidControl(); }
    Control* focusWindowX1Control() const override { return invalidControl(); }
    Control* focusWindowX2Control() const override { return invalidControl(); }
    Control* focusWindowY1Control() const override { return invalidControl(); }
    Control* focusWindowY2Control() const override { return invalidControl(); }
    Control* lockAutoControlsControl() const override { return invalidControl(); }
    Control* windowSelectedControl() const override { return invalidControl(); }
    Control* focusMinControl() const override { return invalidControl(); }
    Control* focusMaxControl() const override { return invalidControl(); }
    Control* focusStepControl() const override { return invalidControl(); }
    Control* focusSensitivityControl() const override { return invalidControl(); }
    Control* focusStrategyControl() const override { return invalidControl(); }
    Control* exposureSensitivityControl() const override { return invalidControl(); }
    Control* whiteBalanceTempControl() const override { return invalidControl(); }
    Control* sharpnessControl() const override { return invalidControl(); }
    Control* saturationControl() const override { return invalidControl(); }
    Control* contrastControl() const override { return invalidControl(); }
    Control* hueControl() const override { return invalidControl(); }
    Control* gammaControl() const override { return invalidControl(); }
    Control* autoGammaControl() const override { return invalidControl(); }

private:
    std::unique_ptr<Control> m_invalid;
};
