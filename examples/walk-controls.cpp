// SPDX-License-Identifier: MIT
// Prints every control of the first camera with its value, whatever its type.
#include <ImageAcquisition.h>

#include <iostream>
#include <memory>
#include <string>

using namespace ImageAcquisition;

namespace
{

template <typename T>
bool printNumber(ICameraControl* control)
{
    auto* const number = dynamic_cast<ICameraControlNumeric<T>*>(control);
    if (number == nullptr) {
        return false;
    }
    std::cout << +number->value() << " (" << +number->minimum() << " to " << +number->maximum()
              << ", step " << +number->step() << ")";
    return true;
}

void printMenu(ICameraControlStringMenu const& menu)
{
    int const current = menu.currentIndex();
    for (int position = 0; position < menu.count(); ++position) {
        std::cout << (position == current ? " [" : " ") << menu.string(position)
                  << (position == current ? "]" : "");
    }
}

void printText(ICameraControlString const& control)
{
    std::string text(control.stringSize(), '\0');
    if (control.getValue(text.data(), static_cast<int>(text.size()))) {
        std::cout << '"' << text.c_str() << '"';
    }
}

void printValue(ICameraControl* control)
{
    if (control->isWriteOnly()) {
        std::cout << "(write-only)";
    } else if (auto* const boolean = dynamic_cast<ICameraControlBoolean*>(control)) {
        std::cout << (boolean->value() ? "on" : "off");
    } else if (auto* const mask = dynamic_cast<ICameraControlBitMask*>(control)) {
        std::cout << "bits 0x" << std::hex << mask->value() << std::dec;
    } else if (auto* const menu = dynamic_cast<ICameraControlStringMenu*>(control)) {
        printMenu(*menu);
    } else if (auto* const integers = dynamic_cast<ICameraControlInt64Menu*>(control)) {
        std::cout << "item " << integers->currentIndex();
    } else if (auto* const text = dynamic_cast<ICameraControlString*>(control)) {
        printText(*text);
    } else if (!(printNumber<int>(control) || printNumber<long long>(control) ||
                 printNumber<unsigned char>(control) || printNumber<unsigned short>(control) ||
                 printNumber<unsigned int>(control))) {
        std::cout << "(no value: a button)";
    }
}

} // namespace

int main()
{
    ICameraFactory& factory = ICameraFactory::getUniqueInstance();
    std::unique_ptr<IDeviceList> const list(factory.createDeviceList());
    std::unique_ptr<IBlockingCamera> const camera(factory.createBlockingCamera(list->at(0)));
    for (int position = 0; camera && position < camera->controlNumber(); ++position) {
        ICameraControl* const control = camera->control(position);
        std::cout << control->name() << ", " << control->typeString() << ": ";
        printValue(control);
        std::cout << (control->isInactive() ? " (inactive)\n" : "\n");
    }
    return camera ? 0 : 1;
}
