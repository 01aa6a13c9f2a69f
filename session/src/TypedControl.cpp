// SPDX-License-Identifier: MIT
#include "session/Control.h"

#include <ICameraControlBitMask.h>
#include <ICameraControlBoolean.h>
#include <ICameraControlButton.h>
#include <ICameraControlInt64Menu.h>
#include <ICameraControlNumeric.h>
#include <ICameraControlString.h>
#include <ICameraControlStringMenu.h>

namespace ImageAcquisition::Session
{

namespace
{

template <typename Interface>
bool tryAs(ICameraControl& control, TypedControl& result)
{
    auto* const interface = dynamic_cast<Interface*>(&control);
    if (interface != nullptr) {
        result = interface;
    }
    return interface != nullptr;
}

template <typename... Interfaces>
TypedControl firstOf(ICameraControl& control)
{
    TypedControl result = &control;
    static_cast<void>((tryAs<Interfaces>(control, result) || ...));
    return result;
}

} // namespace

TypedControl typed(ICameraControl& control)
{
    return firstOf<ICameraControlNumeric<int>, ICameraControlBoolean, ICameraControlStringMenu,
                   ICameraControlNumeric<unsigned char>, ICameraControlNumeric<unsigned short>,
                   ICameraControlNumeric<unsigned int>, ICameraControlNumeric<long long>,
                   ICameraControlBitMask, ICameraControlInt64Menu, ICameraControlString,
                   ICameraControlButton>(control);
}

} // namespace ImageAcquisition::Session
