// SPDX-License-Identifier: MIT
#pragma once

#include "Export.h"

namespace ImageAcquisition
{

/**
 * @brief One setting of a camera.
 *
 * The value is reached through the typed interface that type() names, had by `dynamic_cast`:
 * `dynamic_cast<ICameraControlNumeric<int>*>(control)`. Controls belong to their camera and must
 * not be used after it. Texts are zero-terminated, never null, and live as long as the control.
 *
 * Flags are those that the driver reported when the camera was opened or at the last
 * updateState(); nothing refreshes them by itself.
 *
 * A write that a call of the system refused, and a read that one did, leave that call's errno; all
 * others leave errno alone. Controls behind the serial link promise nothing about it.
 *
 * Threads: the controls' thread.
 */
class IMAGEACQUISITION_EXPORT ICameraControl
{
public:
    /// What kind of value a control has, and so which typed interface it offers.
    enum Type : int {
        Invalid = 0,    ///< The stand-in for a control that does not exist.
        BitMask = 1,    ///< ICameraControlBitMask
        Boolean = 2,    ///< ICameraControlBoolean
        Button = 3,     ///< ICameraControlButton
        Int32 = 4,      ///< ICameraControlNumeric<int>
        Int64 = 5,      ///< ICameraControlNumeric<long long>
        Int64Menu = 6,  ///< ICameraControlInt64Menu
        UInt8 = 7,      ///< ICameraControlNumeric<unsigned char>
        UInt16 = 8,     ///< ICameraControlNumeric<unsigned short>
        UInt32 = 9,     ///< ICameraControlNumeric<unsigned int>
        String = 10,    ///< ICameraControlString
        StringMenu = 11 ///< ICameraControlStringMenu
    };

    /// What a control acts on. Single bits, so that an application can filter by a mask.
    enum Family : unsigned int {
        Focus = 0x00000001,         ///< Focus and focus windows
        AutoControl = 0x00000002,   ///< Triggers and locks of the automatic algorithms
        ImageGeometry = 0x00000004, ///< Pixel ratio, pan, tilt
        ImageQuality = 0x00000008,  ///< Brightness, contrast, saturation, white balance, ...
        Debug = 0x00000010,         ///< Test pictures
        Lighting = 0x00000020,      ///< The camera's light, and its temperature
        Connection = 0x00000040,    ///< Keep-alive
        Status = 0x00000080,        ///< Error status
        Advanced = 0x00000100,      ///< Hue, gamma, gain and their automatic modes
        Unknown = 0x80000000        ///< None of these
    };

    virtual ~ICameraControl();

    /// The V4L2 control id; over the serial link the UVC control selector.
    virtual unsigned int id() const = 0;

    /// What kind of value it has.
    virtual Type type() const = 0;

    /// What it acts on.
    virtual Family family() const = 0;

    /// Its name, by which ICamera::control(char const*) finds it.
    virtual char const* name() const = 0;

    /// type() as a text, such as "Boolean"; "UnknownType" for Invalid.
    virtual char const* typeString() const = 0;

    /// familyString(family()).
    virtual char const* familyString() const = 0;

    /// Permanently out of use; writes are refused.
    virtual bool isDisabled() const = 0;

    /// Held by another application at present; writes are refused.
    virtual bool isGrabbed() const = 0;

    /// Can only be read.
    virtual bool isReadOnly() const = 0;

    /// Changing it may change other controls.
    virtual bool needsClassUpdate() const = 0;

    /// Without effect at present, because of another control; writes are refused.
    virtual bool isInactive() const = 0;

    /// Best shown as a slider.
    virtual bool bestAsSlider() const = 0;

    /// Can only be written; reads give 0, false, or false as a result.
    virtual bool isWriteOnly() const = 0;

    /// Its value changes by itself.
    virtual bool isVolatile() const = 0;

    /// Its value travels as a block of memory.
    virtual bool hasPayload() const = 0;

    /// Writing the value that it already has still acts.
    virtual bool executesOnWrite() const = 0;

    /**
     * @brief Asks the camera for the flags again.
     * @return false when a control behind the serial link got no answer; always true for the
     * others, which keep their flags when the driver does not answer.
     */
    virtual bool updateState() = 0;

    /**
     * @brief A text for a family.
     *
     * The texts are indexed by the family's number and do not say what the families of this
     * library are: Focus gives "MPEG". Kept as they are: docs/behaviour.md, Controls. To show a
     * family to a person, use texts of your own.
     * @return the text, never null; "Unknown" for numbers from 12 on.
     */
    static char const* familyString(Family family);
};

} // namespace ImageAcquisition
