// SPDX-License-Identifier: MIT
#include "UsbNeighbours.h"

#include "Udev.h"

namespace ImageAcquisition::Session
{

namespace
{

std::string busOf(std::string const& port)
{
    return port.substr(0, port.find('-'));
}

} // namespace

std::string usbNeighboursOf(std::string const& port)
{
    std::string neighbours;
    UdevContext const context(udev_new());
    UdevEnumerate const enumerate(context ? udev_enumerate_new(context.get()) : nullptr);
    if (port.empty() || !enumerate ||
        udev_enumerate_add_match_subsystem(enumerate.get(), "usb") < 0 ||
        udev_enumerate_scan_devices(enumerate.get()) < 0) {
        return neighbours;
    }
    udev_list_entry* entry = nullptr;
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(enumerate.get()))
    {
        // Devices are named by their ports, 1-2.3; interfaces have a colon, root hubs no dash.
        std::string const path = udev_list_entry_get_name(entry);
        std::string const name = path.substr(path.rfind('/') + 1);
        if (name == port || busOf(name) != busOf(port) || name.find(':') != std::string::npos ||
            name.find('-') == std::string::npos) {
            continue;
        }
        UdevDevice const device(udev_device_new_from_syspath(context.get(), path.c_str()));
        if (device && attribute(device.get(), "bDeviceClass") != "09") {
            neighbours += (neighbours.empty() ? "" : ", ") + name + " '" +
                          attribute(device.get(), "product") + "'";
        }
    }
    return neighbours;
}

} // namespace ImageAcquisition::Session
