// SPDX-License-Identifier: MIT
#pragma once

#include "camera/Camera.h"
#include "serial/SerialLink.h"
#include "serial/ZorvaneCameraControlStringMenu.h"

#include <QObject>

#include <map>
#include <memory>
#include <vector>

namespace ImageAcquisition
{

class ZorvaneCameraControl;

/// One of the vendor's cameras with a firmware that offers its controls over the camera's own
/// serial port. Video is that of any camera.
class ZorvaneCamera : public QObject, public Camera
{
    Q_OBJECT

public:
    /// One control: how it is called and where it lives in the camera.
    struct ControlStruct
    {
        char const* name; ///< Also the key of its menu, by pointer.
        int cid;          ///< UVC control selector.
        int unit;         ///< UVC entity: 1 camera terminal, 2 processing unit, 3 extension unit.
        int type;         ///< An ICameraControl::Type.
        int family;       ///< An ICameraControl::Family.
        bool shared;      ///< Whether it is a field of a larger UVC control.
        int offset;       ///< First byte of the field.
        int length;       ///< Bytes of the field.
    };

    using MenuSettings =
        std::map<char const*, std::vector<ZorvaneCameraControlStringMenu::IndexSetting>>;

    /// Opens nothing.
    explicit ZorvaneCamera(IDevice const* device);
    ZorvaneCamera(IDevice const* device, SerialLink::Limits const& limits);
    ~ZorvaneCamera() override;

    /// Finds the camera's tty in the kernel log and opens it, unless somebody holds it. Whether the
    /// port is open.
    bool initCommunication();

    /// Closes the port.
    void endCommunication();

    /// What its controls exchange requests over.
    SerialLink& link() { return m_link; }

    /// Opens the serial link and then initialises the camera, whatever became of the link, so that
    /// video works without it. True when both succeeded.
    bool init() override;

    /// The controls, in the order in which they are made and listed.
    static std::vector<ControlStruct> const _controlMap;

    /// The items of the menus: the value that travels, and its label.
    static MenuSettings const _stringMenuSettings;

    // The names, by getter. The table and the menus use these very pointers.
    static char const* const _focusControl;
    static char const* const _autoFocusControl;
    static char const* const _focusMinControl;
    static char const* const _focusMaxControl;
    static char const* const _focusStepControl;
    static char const* const _focusSensitivityControl;
    static char const* const _focusStrategyControl;
    static char const* const _lightModeControl;
    static char const* const _lightIntensityControl;
    static char const* const _temperatureControl;
    static char const* const _autoExposureControl;
    static char const* const _exposureSensitivityControl;
    static char const* const _exposureAbsoluteControl;
    static char const* const _gainControl;
    static char const* const _autoContrastBrightnessControl;
    static char const* const _brightnessControl;
    static char const* const _contrastControl;
    static char const* const _autoHueControl;
    static char const* const _hueControl;
    static char const* const _autoSaturationControl;
    static char const* const _saturationControl;
    static char const* const _autoSharpnessControl;
    static char const* const _sharpnessControl;
    static char const* const _gammaControl;
    static char const* const _autoGammaControl;
    static char const* const _triggerAutoControl;
    static char const* const _cameraErrorControl;
    static char const* const _keepAliveControl;
    static char const* const _windowSelectedControl;
    static char const* const _focusWindowX1Control;
    static char const* const _focusWindowX2Control;
    static char const* const _focusWindowY1Control;
    static char const* const _focusWindowY2Control;
    static char const* const _lockAutoControlsControl;
    static char const* const _autoWhiteBalanceControl;
    static char const* const _whiteBalanceTempControl;
    static char const* const _whiteBalanceRedControl;
    static char const* const _whiteBalanceGreenControl;
    static char const* const _whiteBalanceBlueControl;

    /// Makes the control of one row; null for a type that has no class here.
    std::unique_ptr<ZorvaneCameraControl> createControl(ControlStruct const& row);

    /// Copies the items of a menu; none when the name's pointer is no key.
    static std::vector<ZorvaneCameraControlStringMenu::IndexSetting> menuSettings(char const* name);

protected:
    /// Makes the controls of the table. Stops at the first that the camera does not answer, which
    /// stays in the set, and returns false.
    bool buildMainControlSet() override;

    /// Null: the unit's controls travel over the serial link.
    ExtensionUnit* createExtensionUnit() const override;

    ICameraControl* namedControl(NamedControl which) const override;

private:
    SerialLink m_link;
};

} // namespace ImageAcquisition
