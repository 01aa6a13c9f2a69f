// SPDX-License-Identifier: MIT
#pragma once

#include "control/ExtensionUnit.h"
#include "system/ModuleExport.h"
#include "system/VideoNode.h"

#include <linux/usb/video.h>
#include <linux/uvcvideo.h>
#include <linux/videodev2.h>

#include <vector>

namespace ImageAcquisition
{

/// Makes the controls of the vendor's extension unit known to the driver, which then lists them as
/// private V4L2 controls for as long as the camera stays attached.
class ZorvaneExtensionUnit : public ExtensionUnit
{
public:
    /// The V4L2 id under which each control is published.
    enum ExtensionUnitId : unsigned int {
        LightMode = V4L2_CID_PRIVATE_BASE,
        LightIntensity,
        ErrorStatus,
        Temperature,
        TriggerAutoControls,
        AutoContrastAndBrightness,
        AutoSaturation,
        AutoSharpness,
        KeepAlive,
        FocusWindow1X1,
        FocusWindow1X2,
        FocusWindow1Y1,
        FocusWindow1Y2,
        LockAutoControls,
        FocusWindowSelect,
        FocusRangeMin,
        FocusRangeMax,
        FocusRangeStep,
        CustomWhiteBalanceRed,
        CustomWhiteBalanceBlue,
        CustomWhiteBalanceGreen,
        AutoFocusSensitivity,
        DebugImageMode,
        ImagePixelRatio,
        ImagePan,
        ImageTilt,
        FocusStrategy,
        AutoExposureSensitivity,
        AutoGamma
    };

    /// The unit's UVC control selectors. Several ids may be bit fields of one selector.
    enum ExtensionUnitSelector : unsigned char {
        LightModeSelector = 1,
        LightIntensitySelector = 2,
        ErrorStatusSelector = 3,
        TemperatureSelector = 4,
        TriggerAutoControlsSelector = 5,
        KeepAliveSelector = 6,
        LockAutoControlsSelector = 7,
        FocusWindowSelectSelector = 8,
        FocusRangeSelector = 9,
        CustomWhiteBalanceSelector = 10,
        AutoFocusSensitivitySelector = 11,
        DebugImageModeSelector = 12,
        ImagePixelRatioSelector = 13,
        ImagePanTiltSelector = 14,
        FocusStrategySelector = 15,
        AutoContrastAndBrightnessSelector = 16,
        AutoSaturationSelector = 17,
        AutoSharpnessSelector = 18,
        FocusWindow1Selector = 20,
        AutoExposureSensitivitySelector = 24,
        AutoGammaSelector = 25
    };

    /// An item of a menu: the value that is sent to the camera, and its name.
    struct MenuItem
    {
        unsigned int value;
        char const* name;
    };

    IMAGEACQUISITION_MODULE_EXPORT static std::vector<MenuItem> lightModeItems();
    IMAGEACQUISITION_MODULE_EXPORT static std::vector<MenuItem> focusStrategyItems();

    /// Installs all mappings. The node stays the camera's.
    explicit ZorvaneExtensionUnit(NodeReference node);
    ~ZorvaneExtensionUnit() override;

    /// Installs all mappings. One that the driver refuses, for instance because it has it already,
    /// does not stop the others.
    void setup();

    /// Nothing to do: the driver offers no way to remove a mapping.
    void cleanup();

    /// Installs one mapping; the result is the ioctl's.
    int addControl(uvc_xu_control_mapping& mapping);

    /// Tells the selector that holds a control. False, and no change, for what is no id of ours.
    static bool idToSelector(ExtensionUnitId id, ExtensionUnitSelector& selector);

private:
    NodeReference m_node;
};

} // namespace ImageAcquisition
