// SPDX-License-Identifier: MIT
#pragma once

#include "session/ControlValue.h"
#include "session/SessionExport.h"

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace ImageAcquisition
{
class ICameraControl;
class ICameraControlBitMask;
class ICameraControlBoolean;
class ICameraControlButton;
class ICameraControlInt64Menu;
template <typename T>
class ICameraControlNumeric;
class ICameraControlString;
class ICameraControlStringMenu;
} // namespace ImageAcquisition

namespace ImageAcquisition::Session
{

class Camera;
class Connection;
class Error;
class OpenCamera;

/// A control by its typed interface, for `std::visit`. It holds the bare interface for a control
/// that has no typed one, and is never a null pointer.
using TypedControl =
    std::variant<ICameraControl*, ICameraControlNumeric<int>*, ICameraControlNumeric<long long>*,
                 ICameraControlNumeric<unsigned char>*, ICameraControlNumeric<unsigned short>*,
                 ICameraControlNumeric<unsigned int>*, ICameraControlBoolean*,
                 ICameraControlButton*, ICameraControlStringMenu*, ICameraControlInt64Menu*,
                 ICameraControlBitMask*, ICameraControlString*>;

/// The typed interface of one of the library's controls.
IMAGEACQUISITION_SESSION_EXPORT TypedControl typed(ICameraControl& control);

/// The short form of a control's name as the kernel's tools write it: "Exposure Time, Absolute"
/// becomes exposure_time_absolute.
IMAGEACQUISITION_SESSION_EXPORT std::string shortName(std::string const& name);

/// What kind of value a control takes.
enum class ControlType {
    Number,  ///< minimum() to maximum().
    Switch,  ///< On or off.
    Button,  ///< Has no value: press().
    Menu,    ///< One of items(); by its label or its position.
    BitMask, ///< 32 bits, as a number.
    Text,    ///< minimum() to maximum() characters.
    Other    ///< None that can be read or written here.
};

/// What Camera::set() is to do: a control by its name, and its value, without which it is a button
/// to be pressed.
struct Assignment
{
    std::string name;                       ///< As Camera::control() takes it.
    std::optional<ControlValue> value = {}; ///< Without it a button is pressed.
};

/// A control's state, asked from the camera.
struct ControlState
{
    bool readOnly = false;      ///< Cannot be set.
    bool writeOnly = false;     ///< Cannot be read.
    bool inactive = false;      ///< Without effect because of another control.
    bool disabled = false;      ///< Out of use for good.
    bool grabbed = false;       ///< Held by another program.
    bool changesItself = false; ///< Its value changes without being set.
    bool changesOthers = false; ///< Setting it may change other controls.
};

/**
 * @brief A handle on one setting of a camera.
 *
 * Copies mean the same control. The handle keeps the open camera alive, and stays good when a
 * stream that stays on has opened the camera anew. Assigning sets the camera's control, never the
 * handle: `camera["gain"] = 3`.
 *
 * Not within its reach, because the library's interfaces have no such thing: the default of a
 * number, compound controls (arrays and structures), the items of a menu of numbers, which is set
 * by position, and the range of 64-bit numbers, which a kernel reports as 0 to 0, so that only 0
 * can be set.
 *
 * Every call may throw Error: Unplugged, Refused (with the reason), BadRequest (a value that is
 * none for this type of control).
 *
 * Threads: any; calls on the controls of one camera wait for one another.
 */
class IMAGEACQUISITION_SESSION_EXPORT Control
{
public:
    /// Means the same control.
    Control(Control const&);
    /// A handle that was moved from can only be destroyed.
    Control(Control&&) noexcept;
    ~Control();
    /// Would set the handle where a reader expects the camera to be set.
    Control& operator=(Control const&) = delete;
    Control& operator=(Control&&) = delete;

    /// The driver's name for it.
    std::string const& name() const noexcept { return m_name; }
    /// The kernel's short form of the name.
    std::string shortName() const;
    /// The V4L2 control id; over the serial link the UVC control selector.
    unsigned int id() const;
    /// What kind of value it takes.
    ControlType type() const;
    /// Asked from the camera now.
    ControlState state() const;

    /// The present value, asked from the camera: a number, a Boolean, a text, or the label of a
    /// menu's item.
    /// @throws Error (Refused) when it cannot be read.
    ControlValue value() const;
    /// The present value as a number: of a menu the position, of a switch 0 or 1.
    long long number() const;

    /// Sets the value. The control's state is asked first, so that a refusal tells its reason.
    /// @throws Error (Refused or BadRequest), and nothing was set.
    void set(ControlValue const& value) const;
    /// As set().
    Control const& operator=(ControlValue const& value) const
    {
        set(value);
        return *this;
    }
    /// Presses a button.
    void press() const;
    /// What stands against setting this value now, found without setting it; empty when only the
    /// camera itself can still refuse.
    std::string refusal(ControlValue const& value) const;

    /// Smallest value of a number, length of a text; 0 for others.
    long long minimum() const;
    /// Largest value of a number, length of a text; 0 for others.
    long long maximum() const;
    /// Distance between values of a number; 1 for others.
    long long step() const;
    /// The labels of a menu by position; empty for others, menus of numbers among them.
    std::vector<std::string> items() const;

    /// The library's interface, for what this class does not offer. It is good until the camera is
    /// opened anew or goes. While it is used, no other thread may use the camera's controls.
    TypedControl typed() const;

private:
    friend class Camera;
    friend class ControlFinder;

    Control(std::shared_ptr<OpenCamera> camera, std::shared_ptr<Connection> connection,
            ICameraControl& control);

    /// What set(), or press() without a value, would throw now; nothing when only the camera itself
    /// can still refuse.
    std::optional<Error> objection(std::optional<ControlValue> const& value,
                                   bool mayBeInactive) const;
    /// Whether others can be active once this one is set, and inactive before.
    bool mayActivateOthers() const;

    template <typename Action>
    auto locked(Action action) const;

    std::shared_ptr<OpenCamera> m_camera;
    std::shared_ptr<Connection> m_connection; ///< What m_control belongs to.
    ICameraControl* m_control;
    std::string m_name;
};

} // namespace ImageAcquisition::Session
