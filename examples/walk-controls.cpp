// SPDX-License-Identifier: MIT
// Prints every control of a camera, with its value and what it takes:
//   walk-controls [CAMERA]
#include <Session.h>

#include <iostream>
#include <utility>

namespace ia = ImageAcquisition::Session;

namespace
{

// A button has no value, and others may have none that can be read.
std::string valueOf(ia::Control const& control)
{
    try {
        return control.value().text();
    } catch (ia::Error const& error) {
        return "(" + error.reason() + ")";
    }
}

void printWhatItTakes(ia::Control const& control)
{
    if (control.type() == ia::ControlType::Number) {
        std::cout << ", from " << control.minimum() << " to " << control.maximum() << " by "
                  << control.step();
    }
    char const* before = ", one of ";
    for (std::string const& item : control.items()) {
        std::cout << std::exchange(before, " | ") << item;
    }
    if (control.state().inactive) {
        std::cout << ", inactive";
    }
}

} // namespace

int main(int count, char** arguments)
try {
    ia::Camera const camera = ia::Camera::open(count > 1 ? arguments[1] : "0");
    for (ia::Control const& control : camera.controls()) {
        std::cout << control.name() << ": " << valueOf(control);
        printWhatItTakes(control);
        std::cout << "\n";
    }
} catch (ia::Error const& error) {
    std::cerr << "walk-controls: " << error.what() << "\n";
    return 1;
}
