// SPDX-License-Identifier: MIT
// Prints the cameras of this machine.
#include <ICameraFactory.h>
#include <IDevice.h>
#include <IDeviceList.h>

#include <exception>
#include <iostream>
#include <memory>

using namespace ImageAcquisition;

namespace
{

void print(IDevice const& device)
{
    std::cout << device.index() << ": " << device.name() << "\n"
              << "   node     " << device.systemName() << " (" << device.driverName() << " "
              << device.driverVersion() << ")\n"
              << "   USB      " << device.vendorId() << ":" << device.productId() << " at "
              << device.busInfo() << ", speed " << device.usbSpeed() << "\n"
              << "   maker    " << device.manufacturer() << "\n"
              << "   serial   " << device.serial() << "\n";
    if (device.isaZorvaneDevice()) {
        std::cout << "   firmware " << device.firmwareVersion() << "\n";
    }
}

} // namespace

int main()
try {
    // What the factory creates is the caller's to delete; the records belong to the list.
    std::unique_ptr<IDeviceList> const cameras(
        ICameraFactory::getUniqueInstance().createDeviceList());
    for (int position = 0; position < cameras->size(); ++position) {
        print(*cameras->at(position));
    }
    if (cameras->size() == 0) {
        std::cout << "No camera is attached.\n";
    }
    return 0;
} catch (std::exception const& error) {
    // A capture device that is not on USB, such as the kernel's vivid, cannot be described.
    std::cerr << "list-cameras: " << error.what() << ": a video node has no USB device behind it\n";
    return 1;
}
