// SPDX-License-Identifier: MIT
#include "ControlReading.h"

#include "session/Control.h"

#include <ICameraControlBitMask.h>
#include <ICameraControlBoolean.h>
#include <ICameraControlButton.h>
#include <ICameraControlInt64Menu.h>
#include <ICameraControlNumeric.h>
#include <ICameraControlString.h>
#include <ICameraControlStringMenu.h>

#include <cerrno>

namespace ImageAcquisition::Session
{

namespace
{

Reading failed(std::string const& reason)
{
    Reading reading;
    reading.failure = reason;
    reading.systemError = errno;
    return reading;
}

/// The interfaces return a number also when the camera did not answer: 0, or -1 over the serial
/// link. What the driver said then is in `errno`, which was 0 before.
bool didNotAnswer(long long value)
{
    return (value == 0 || value == -1) && errno != 0 && errno != EINTR && errno != EAGAIN;
}

Reading told(ControlValue const& value, long long number)
{
    return didNotAnswer(number) ? failed("the camera did not answer")
                                : Reading{value, number, {}, 0};
}

/// Reads through each typed interface.
struct Reader
{
    template <typename T>
    Reading operator()(ICameraControlNumeric<T>* control) const
    {
        auto const value = static_cast<long long>(control->value());
        return told(value, value);
    }
    Reading operator()(ICameraControlBoolean* control) const
    {
        bool const value = control->value();
        return told(value, value ? 1 : 0);
    }
    Reading operator()(ICameraControlBitMask* control) const
    {
        unsigned int const value = control->value();
        return told(value, value);
    }
    Reading operator()(ICameraControlStringMenu* control) const
    {
        int const index = control->currentIndex();
        return index < 0 || index >= control->count()
                   ? failed("its value is none of its items")
                   : told(std::string(control->string(index)), index);
    }
    Reading operator()(ICameraControlInt64Menu* control) const
    {
        int const index = control->currentIndex();
        return index < 0 ? failed("its value is none of its items") : told(index, index);
    }
    Reading operator()(ICameraControlString* control) const
    {
        unsigned int const size = control->stringSize();
        std::string text(size, '\0');
        if (size == 0 || size > maximumSize ||
            !control->getValue(text.data(), static_cast<int>(size))) {
            return failed("the camera did not answer");
        }
        return {std::string(text.c_str()), 0, {}, 0};
    }
    Reading operator()(ICameraControlButton* /*control*/) const { return failed("it is a button"); }
    Reading operator()(ICameraControl* /*control*/) const
    {
        return failed("it has no value that can be read here");
    }

    static constexpr unsigned int maximumSize = 1U << 20;
};

struct Ranger
{
    template <typename T>
    ControlRange operator()(ICameraControlNumeric<T>* control) const
    {
        return {static_cast<long long>(control->minimum()),
                static_cast<long long>(control->maximum()),
                static_cast<long long>(control->step())};
    }
    ControlRange operator()(ICameraControlString* control) const
    {
        return {control->minLength(), control->maxLength(), 1};
    }
    ControlRange operator()(void* /*control*/) const { return {}; }
};

struct Lister
{
    std::vector<std::string> operator()(ICameraControlStringMenu* menu) const
    {
        std::vector<std::string> items;
        items.reserve(static_cast<std::size_t>(menu->count()));
        for (int i = 0; i < menu->count(); ++i) {
            items.emplace_back(menu->string(i));
        }
        return items;
    }
    std::vector<std::string> operator()(void* /*control*/) const { return {}; }
};

} // namespace

Reading readValue(ICameraControl& control)
{
    errno = 0;
    bool const isButton = control.type() == ICameraControl::Button;
    return control.isWriteOnly() && !isButton ? failed("write-only")
                                              : std::visit(Reader(), typed(control));
}

ControlRange rangeOf(ICameraControl& control)
{
    return std::visit(Ranger(), typed(control));
}

std::vector<std::string> itemsOf(ICameraControl& control)
{
    return std::visit(Lister(), typed(control));
}

} // namespace ImageAcquisition::Session
