// SPDX-License-Identifier: MIT
#include "session/Control.h"

#include "ControlReading.h"
#include "ControlWriting.h"
#include "OpenCamera.h"
#include "SystemFailure.h"

#include <ICameraControl.h>

#include <cerrno>
#include <utility>

namespace ImageAcquisition::Session
{

namespace
{

/// The control of this id and name, which a camera that was opened anew has as well.
ICameraControl& sameControl(Connection const& connection, unsigned int id, std::string const& name)
{
    ICamera const& camera = connection.camera();
    for (int position = 0; position < camera.controlNumber(); ++position) {
        ICameraControl& control = *camera.control(position);
        if (control.id() == id && name == control.name()) {
            return control;
        }
    }
    throw Error({ErrorKind::NotFound, "find control '" + name + "'",
                 "the camera has it no more since it came back", connection.node()});
}

ControlType typeOf(ICameraControl const& control)
{
    switch (control.type()) {
    case ICameraControl::Boolean:
        return ControlType::Switch;
    case ICameraControl::Button:
        return ControlType::Button;
    case ICameraControl::StringMenu:
    case ICameraControl::Int64Menu:
        return ControlType::Menu;
    case ICameraControl::BitMask:
        return ControlType::BitMask;
    case ICameraControl::String:
        return ControlType::Text;
    case ICameraControl::Invalid:
        return ControlType::Other;
    default:
        return ControlType::Number;
    }
}

/// An unplugged camera is told apart; whatever else the driver says, it refused.
[[noreturn]] void throwRefused(std::string const& operation, Connection const& connection,
                               std::string const& reason, ErrorKind kind, int systemError,
                               std::string const& hint = {})
{
    bool const isGone = kindOf(systemError) == ErrorKind::Unplugged;
    throw Error({isGone ? ErrorKind::Unplugged : kind, operation,
                 isGone ? "the camera is gone" : reason, connection.node(), systemError, hint});
}

std::string operationOf(std::string const& name, std::optional<ControlValue> const& value)
{
    return value ? "set " + name + " to '" + value->text() + "'" : "press " + name;
}

/// Setting a value, or pressing where there is none.
Write preparedWrite(ICameraControl& control, std::optional<ControlValue> const& value,
                    bool mayBeInactive = false)
{
    control.updateState();
    Refusal const byState = mayBeInactive ? refusalByNature(control) : refusalByState(control);
    if (!byState.empty()) {
        return {byState, {}, ErrorKind::Refused, {}};
    }
    return value ? writeValue(control, *value) : press(control);
}

void carryOut(Write const& write, std::string const& operation, Connection const& connection)
{
    if (!write.refusal.empty()) {
        throwRefused(operation, connection, write.refusal, write.kind, 0, write.hint);
    }
    errno = 0;
    Refusal const refusal = write.carryOut();
    if (!refusal.empty()) {
        throwRefused(operation, connection, refusal, ErrorKind::Refused, errno);
    }
}

} // namespace

Control::Control(std::shared_ptr<OpenCamera> camera, std::shared_ptr<Connection> connection,
                 ICameraControl& control)
    : m_camera(std::move(camera)), m_connection(std::move(connection)), m_control(&control),
      m_name(control.name())
{
}

Control::Control(Control const&) = default;
Control::Control(Control&&) noexcept = default;
Control::~Control() = default;

template <typename Action>
auto Control::locked(Action action) const
{
    return m_camera->call([&](std::shared_ptr<Connection> const& present) {
        return action(present == m_connection ? *m_control
                                              : sameControl(*present, m_control->id(), m_name),
                      *present);
    });
}

std::string Control::shortName() const
{
    return Session::shortName(m_name);
}

unsigned int Control::id() const
{
    return m_control->id();
}

ControlType Control::type() const
{
    return typeOf(*m_control);
}

ControlState Control::state() const
{
    return locked([this](ICameraControl& control, Connection const& connection) {
        errno = 0;
        if (!control.updateState()) {
            throwRefused("ask for the state of " + m_name, connection, "the camera did not answer",
                         ErrorKind::Refused, errno);
        }
        return ControlState{control.isReadOnly(),      control.isWriteOnly(), control.isInactive(),
                            control.isDisabled(),      control.isGrabbed(),   control.isVolatile(),
                            control.needsClassUpdate()};
    });
}

template <typename Part>
static Part readPart(Part Reading::*part, std::string const& name, ICameraControl& control,
                     Connection const& connection)
{
    Reading reading = readValue(control);
    if (!reading.failure.empty()) {
        throwRefused("read " + name, connection, reading.failure, ErrorKind::Refused,
                     reading.systemError);
    }
    return std::move(reading.*part);
}

ControlValue Control::value() const
{
    return locked([this](ICameraControl& control, Connection const& connection) {
        return readPart(&Reading::value, m_name, control, connection);
    });
}

long long Control::number() const
{
    return locked([this](ICameraControl& control, Connection const& connection) {
        return readPart(&Reading::number, m_name, control, connection);
    });
}

void Control::set(ControlValue const& value) const
{
    locked([&](ICameraControl& control, Connection const& connection) {
        carryOut(preparedWrite(control, value), operationOf(m_name, value), connection);
        m_camera->noteSet(m_name, value);
    });
}

void Control::press() const
{
    locked([this](ICameraControl& control, Connection const& connection) {
        carryOut(preparedWrite(control, {}), operationOf(m_name, {}), connection);
    });
}

std::optional<Error> Control::objection(std::optional<ControlValue> const& value,
                                        bool mayBeInactive) const
{
    return locked([&](ICameraControl& control, Connection const& connection) {
        Write const write = preparedWrite(control, value, mayBeInactive);
        return write.refusal.empty() ? std::optional<Error>()
                                     : Error({write.kind, operationOf(m_name, value), write.refusal,
                                              connection.node(), 0, write.hint});
    });
}

std::string Control::refusal(ControlValue const& value) const
{
    return locked([&](ICameraControl& control, Connection const&) {
        return preparedWrite(control, value).refusal;
    });
}

/// What lets a camera choose by itself is a switch or a menu, or the driver says so.
bool Control::mayActivateOthers() const
{
    ControlType const type = this->type();
    return type == ControlType::Switch || type == ControlType::Menu ||
           locked([](ICameraControl& control, Connection const&) {
               return control.needsClassUpdate();
           });
}

long long Control::minimum() const
{
    return rangeOf(*m_control).minimum;
}

long long Control::maximum() const
{
    return rangeOf(*m_control).maximum;
}

long long Control::step() const
{
    return rangeOf(*m_control).step;
}

std::vector<std::string> Control::items() const
{
    return itemsOf(*m_control);
}

TypedControl Control::typed() const
{
    return locked(
        [](ICameraControl& control, Connection const&) { return Session::typed(control); });
}

} // namespace ImageAcquisition::Session
