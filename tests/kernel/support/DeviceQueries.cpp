// SPDX-License-Identifier: MIT
#include "DeviceQueries.h"

#include <cerrno>
#include <fcntl.h>
#include <libusb.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace KernelTest
{

std::string lastKernelLine(std::string const& text)
{
    std::string found;
    for (std::string const& line : splitLines(runShell("dmesg").output)) {
        if (line.find(text) != std::string::npos) {
            found = line;
        }
    }
    return found;
}

UnitAnswer queryUnit(std::string const& node, std::uint8_t unit, std::uint8_t selector,
                     std::uint8_t request, UsbCamera::Bytes data)
{
    UnitAnswer answer;
    int const descriptor = ::open(node.c_str(), O_RDWR | O_CLOEXEC);
    uvc_xu_control_query query{};
    query.unit = unit;
    query.selector = selector;
    query.query = request;
    query.size = static_cast<std::uint16_t>(data.size());
    query.data = data.data();
    answer.error = ::ioctl(descriptor, UVCIOC_CTRL_QUERY, &query) == 0 ? 0 : errno;
    answer.data = data;
    ::close(descriptor);
    return answer;
}

UsbAnswer requestVendor(std::uint16_t vendorId, std::uint16_t productId, std::uint8_t request,
                        std::uint16_t length)
{
    UsbAnswer answer{LIBUSB_ERROR_NO_DEVICE, ""};
    libusb_context* context = nullptr;
    libusb_init(&context);
    libusb_device_handle* handle = libusb_open_device_with_vid_pid(context, vendorId, productId);
    if (handle != nullptr) {
        UsbCamera::Bytes buffer(length);
        answer.result =
            libusb_control_transfer(handle, 0xc0, request, 0, 0, buffer.data(), length, 5000);
        if (answer.result > 0) {
            answer.text.assign(buffer.begin(), buffer.begin() + answer.result);
        }
        libusb_close(handle);
    }
    libusb_exit(context);
    return answer;
}

} // namespace KernelTest
