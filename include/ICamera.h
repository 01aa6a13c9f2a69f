// SPDX-License-Identifier: MIT
#pragma once

#include "Export.h"

namespace ImageAcquisition
{

class ICameraControl;
class IDevice;
class IFramePeriod;
class IFrameSize;
class IImageFormat;

/**
 * @brief An open camera: its description, its controls and its formats.
 *
 * Everything that a camera hands out by pointer belongs to it and is good until it is deleted.
 *
 * A call about formats that gives false or an invalid object because a call of the system failed
 * leaves that call's errno; any other leaves errno alone: docs/behaviour.md, Why a call failed.
 *
 * Threads: formats and capture belong to one thread at a time, called the camera's thread, and the
 * controls to one at a time, called the controls' thread, which may be another. Frames may be given
 * back, and the capture may be stopped, by further ones: docs/threading.md. The list of controls
 * may be looked through by any. Different cameras may be used from different threads.
 */
class IMAGEACQUISITION_EXPORT ICamera
{
public:
    virtual ~ICamera();

    /// Number of controls.
    virtual int controlNumber() const = 0;

    /// The camera's own copy of the record that it was made from; never null.
    virtual IDevice const* device() const = 0;

    /// The control at @p position; invalidControl() outside 0 to controlNumber() - 1. Never null.
    virtual ICameraControl* control(int position) const = 0;

    /// The first control whose name equals @p name to the letter; invalidControl() when there is
    /// none or @p name is null. Never null.
    virtual ICameraControl* control(char const* name) const = 0;

    /// @name Well-known controls
    /// Each returns the control with the V4L2 id beside it, or invalidControl() when the camera has
    /// none; never null. Those of the vendor's cameras only are private controls, whose id is told
    /// by ICameraControl::id(). Behind the serial link it is the control of the same purpose. Which
    /// typed interface a control offers is told by ICameraControl::type().
    /// @{

    /// The vendor's cameras only
    virtual ICameraControl* autoContrastBrightnessControl() const = 0;
    /// V4L2_CID_EXPOSURE_AUTO
    virtual ICameraControl* autoExposureControl() const = 0;
    /// V4L2_CID_FOCUS_AUTO
    virtual ICameraControl* autoFocusControl() const = 0;
    /// V4L2_CID_HUE_AUTO
    virtual ICameraControl* autoHueControl() const = 0;
    /// The vendor's cameras only
    virtual ICameraControl* autoSaturationControl() const = 0;
    /// The vendor's cameras only
    virtual ICameraControl* autoSharpnessControl() const = 0;
    /// V4L2_CID_AUTO_WHITE_BALANCE
    virtual ICameraControl* autoWhiteBalanceControl() const = 0;
    /// V4L2_CID_BRIGHTNESS
    virtual ICameraControl* brightnessControl() const = 0;
    /// The vendor's cameras only
    virtual ICameraControl* cameraErrorControl() const = 0;
    /// V4L2_CID_EXPOSURE_ABSOLUTE
    virtual ICameraControl* exposureAbsoluteControl() const = 0;
    /// V4L2_CID_GAIN
    virtual ICameraControl* gainControl() const = 0;
    /// V4L2_CID_FOCUS_ABSOLUTE
    virtual ICameraControl* focusControl() const = 0;
    /// The vendor's cameras only
    virtual ICameraControl* keepAliveControl() const = 0;
    /// The vendor's cameras only
    virtual ICameraControl* lightIntensityControl() const = 0;
    /// The vendor's cameras only
    virtual ICameraControl* lightModeControl() const = 0;
    /// The vendor's cameras only
    virtual ICameraControl* triggerAutoControl() const = 0;
    /// The vendor's cameras only
    virtual ICameraControl* focusWindowX1Control() const = 0;
    /// The vendor's cameras only
    virtual ICameraControl* focusWindowX2Control() const = 0;
    /// The vendor's cameras only
    virtual ICameraControl* focusWindowY1Control() const = 0;
    /// The vendor's cameras only
    virtual ICameraControl* focusWindowY2Control() const = 0;
    /// The vendor's cameras only
    virtual ICameraControl* lockAutoControlsControl() const = 0;
    /// The vendor's cameras only
    virtual ICameraControl* windowSelectedControl() const = 0;
    /// The vendor's cameras only
    virtual ICameraControl* focusMinControl() const = 0;
    /// The vendor's cameras only
    virtual ICameraControl* focusMaxControl() const = 0;
    /// The vendor's cameras only
    virtual ICameraControl* focusStepControl() const = 0;
    /// The vendor's cameras only
    virtual ICameraControl* focusSensitivityControl() const = 0;
    /// The vendor's cameras only
    virtual ICameraControl* focusStrategyControl() const = 0;
    /// The vendor's cameras only
    virtual ICameraControl* exposureSensitivityControl() const = 0;
    /// V4L2_CID_WHITE_BALANCE_TEMPERATURE
    virtual ICameraControl* whiteBalanceTempControl() const = 0;
    /// V4L2_CID_SHARPNESS
    virtual ICameraControl* sharpnessControl() const = 0;
    /// V4L2_CID_SATURATION
    virtual ICameraControl* saturationControl() const = 0;
    /// V4L2_CID_CONTRAST
    virtual ICameraControl* contrastControl() const = 0;
    /// V4L2_CID_HUE
    virtual ICameraControl* hueControl() const = 0;
    /// V4L2_CID_GAMMA
    virtual ICameraControl* gammaControl() const = 0;
    /// The vendor's cameras only
    virtual ICameraControl* autoGammaControl() const = 0;
    /// @}

    /// The stand-in that every lookup returns when it finds nothing: type Invalid, name
    /// "Invalid control". Never null.
    virtual ICameraControl* invalidControl() const = 0;

    /// Number of pixel formats.
    virtual int formatNumber() const = 0;

    /// The format at @p position in the driver's order; the invalid format outside 0 to
    /// formatNumber() - 1. Never null.
    virtual IImageFormat const* format(int position) const = 0;

    /// The format that is set on the device now, asked from it; the invalid format when it does
    /// not answer or its format is none of the list. Never null.
    virtual IImageFormat const* currentImageFormat() const = 0;

    /// The size that is set on the device now; the invalid size when the device does not answer or
    /// its size is none of the list. Never null.
    /// @throws std::out_of_range when the device's pixel format is none of the list.
    virtual IFrameSize const* currentFrameSize() const = 0;

    /// The frame interval that is set on the device now; the invalid period when the device does
    /// not answer or its interval is none of the list. Never null.
    /// @throws std::out_of_range when the device's pixel format is none of the list.
    virtual IFramePeriod const* currentFrameInterval() const = 0;

    /**
     * @brief Makes one of the vendor's cameras restart itself, by a USB request.
     *
     * The camera then leaves the bus and comes back as a new device; this object is of no more use.
     * @return true when the request was sent; whether the camera obeyed is not known. False for
     * other cameras, and when the process may not open the USB device.
     */
    virtual bool softwareReset() = 0;

    /**
     * @brief Selects a format, size and interval by their positions in the camera's lists.
     *
     * Must not be called while streaming.
     * @param format position below formatNumber().
     * @param frameSize position below the format's IImageFormat::sizeNumber().
     * @param framePeriod position below the size's IFrameSize::periodNumber(); it does not matter
     * for a size without intervals. One that is too large asks the device for the interval 0/1,
     * which most drivers answer by setting one of their own choice.
     * @return false when a position is negative, when the format or size position is too large, or
     * when the device refused. When only the interval was refused, the new format and size stay
     * set.
     */
    virtual bool setCurrentImageFormat(int format, int frameSize, int framePeriod) = 0;

    /**
     * @brief Selects a format, size and interval by name and value.
     *
     * The interval is @p numerator / @p denominator seconds, and must equal one of the size's
     * intervals in both numbers: 2/60 does not find 1/30. A size without a list of intervals can
     * only be selected by position.
     * @param formatName four-character code; null gives false.
     * @param width in pixels.
     * @param height in pixels.
     * @param numerator seconds, above the line.
     * @param denominator seconds, below the line.
     * @return false when there is no such format, size or interval, or the device refused.
     */
    virtual bool setCurrentImageFormat(char const* formatName, int width, int height, int numerator,
                                       int denominator) = 0;
};

} // namespace ImageAcquisition
