// SPDX-License-Identifier: MIT
// Prints the cameras of this machine, and the video nodes that are none.
#include <IDevice.h>
#include <Session.h>

#include <iostream>

namespace ia = ImageAcquisition::Session;

namespace
{

void print(ia::Found const& camera)
{
    // The record tells the usual; the library's interface to it tells all.
    ImageAcquisition::IDevice const& device = camera.device();
    std::cout << camera.index() << ": " << camera.name() << "\n"
              << "   open by  " << camera.text() << "\n"
              << "   node     " << camera.node() << " (" << device.driverName() << " "
              << device.driverVersion() << ")\n"
              << "   USB      " << camera.id() << " at " << camera.port() << ", speed "
              << device.usbSpeed() << "\n"
              << "   maker    " << device.manufacturer() << "\n";
    if (device.isaZorvaneDevice()) {
        std::cout << "   firmware " << device.firmwareVersion() << "\n";
    }
}

} // namespace

int main()
try {
    ia::CameraList const list = ia::findCameras();
    for (ia::Found const& camera : list.cameras) {
        print(camera);
    }
    for (ia::LeftOut const& node : list.leftOut) {
        std::cout << node.node << " " << node.reason << "\n";
    }
} catch (ia::Error const& error) {
    std::cerr << "list-cameras: " << error.what() << "\n";
    return 1;
}
