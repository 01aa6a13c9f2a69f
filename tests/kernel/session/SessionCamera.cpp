// SPDX-License-Identifier: MIT
#include "SessionCamera.h"

#include "DeviceStub.h"
#include "Shell.h"
#include "V4l2Ctl.h"

#include <algorithm>
#include <regex>

namespace KernelTest
{

ia::StreamOptions unhurried(ia::Delivery delivery)
{
    ia::StreamOptions options(delivery);
    options.buffers = 16;
    options.timeout = 20s;
    return options;
}

ia::Camera openEmulated(EmulatedCameras const& cameras, unsigned camera)
{
    return ia::Camera::open(cameras.videoNode(camera));
}

ia::Camera openVivid(std::string const& node)
{
    DeviceStub record;
    record.card = "vivid";
    record.driver = "vivid";
    record.node = node.c_str();
    record.bus = "platform:vivid-000";
    record.vendor = "";
    record.product = "";
    record.serialNumber = "";
    return ia::Camera::open(ia::Found(record));
}

std::string vividNode()
{
    for (std::string const& folder :
         splitLines(runShell("ls -d /sys/class/video4linux/*").output)) {
        std::string const name = readFile(folder + "/name");
        if (std::regex_search(name, std::regex("^vivid-[0-9]+-vid-cap$"))) {
            return "/dev/" + folder.substr(folder.rfind('/') + 1);
        }
    }
    return "";
}

Pictures::Pictures(ia::Selection const& selection) : m_painter(selection.width, selection.height)
{
    if (selection.format == "MJPG") {
        m_images.emplace(selection.width, selection.height);
    }
}

bool Pictures::areIn(ia::Frame const& frame)
{
    auto const number = static_cast<std::uint32_t>(frame.number());
    UsbCamera::Bytes const& wanted = m_images ? m_images->frame(number) : m_painter.paint(number);
    ia::Bytes const bytes = frame.bytes();
    return std::equal(bytes.begin(), bytes.end(), wanted.begin(), wanted.end());
}

std::vector<unsigned long long> takeAll(ia::Stream& stream, Pictures& pictures)
{
    std::vector<unsigned long long> numbers;
    while (ia::Frame const frame = stream.next(3s)) {
        if (pictures.areIn(frame)) {
            numbers.push_back(frame.number());
        }
    }
    return numbers;
}

std::string selectedByV4l2Ctl(std::string const& node)
{
    std::string const text = v4l2Ctl(node, "--get-fmt-video --get-parm");
    std::smatch size;
    std::smatch format;
    std::smatch rate;
    if (!std::regex_search(text, size, std::regex("Width/Height\\s*: (\\d+)/(\\d+)")) ||
        !std::regex_search(text, format, std::regex("Pixel Format\\s*: '(.{4})'"))) {
        return text;
    }
    bool const hasRate =
        std::regex_search(text, rate, std::regex("Frames per second: [0-9.]+ \\((\\d+)/(\\d+)\\)"));
    auto const part = [&rate](std::size_t i) { return static_cast<unsigned>(std::stoul(rate[i])); };
    return ia::Selection{format[1], static_cast<unsigned>(std::stoul(size[1])),
                         static_cast<unsigned>(std::stoul(size[2])),
                         hasRate ? ia::FrameRate{part(1), part(2)} : ia::FrameRate{}}
        .text();
}

} // namespace KernelTest
