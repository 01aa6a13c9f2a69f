// SPDX-License-Identifier: MIT
#include "RequestLog.h"

#include "Descriptors.h"

#include <cerrno>
#include <chrono>
#include <nlohmann/json.hpp>
#include <system_error>

namespace UsbCamera
{

namespace
{

using Json = nlohmann::ordered_json;

Json makeLine(unsigned camera, std::string const& kind)
{
    auto const now = std::chrono::steady_clock::now().time_since_epoch();
    Json line;
    line["time"] = std::chrono::duration<double>(now).count();
    line["camera"] = camera;
    line["kind"] = kind;
    return line;
}

void write(std::FILE* file, Json const& line)
{
    std::fputs((line.dump() + "\n").c_str(), file);
    std::fflush(file);
}

std::string kindOf(SetupPacket const& setup)
{
    switch (setup.requestType >> 5 & 3) {
    case 0:
        return "standard";
    case 2:
        return "vendor";
    default:
        break;
    }
    if (ControlEndpoint::isUnitRequest(setup)) {
        return "unit";
    }
    switch (setup.index & 0xff) {
    case videoControlInterface:
        return "interface";
    case videoStreamingInterface:
        return "streaming";
    default:
        return "port";
    }
}

} // namespace

RequestLog::RequestLog(std::string const& fileName)
{
    if (fileName.empty()) {
        return;
    }
    m_file.reset(std::fopen(fileName.c_str(), "we"));
    if (m_file == nullptr) {
        throw std::system_error(errno, std::generic_category(), fileName);
    }
}

void RequestLog::control(unsigned camera, SetupPacket const& setup, Bytes const& sent,
                         ControlReply const& reply)
{
    if (m_file == nullptr) {
        return;
    }
    std::string const kind = kindOf(setup);
    Json line = makeLine(camera, kind);
    if (kind == "standard" || kind == "port") {
        line["request"] = setup.request;
    } else if (kind == "vendor") {
        line["request"] = toHex({setup.request});
    } else {
        line["request"] = requestName(setup.request);
        line["unit"] = setup.index >> 8;
        line["selector"] = setup.value >> 8;
    }
    line["requestType"] = setup.requestType;
    line["value"] = setup.value;
    line["index"] = setup.index;
    line["length"] = setup.length;
    line["data"] = toHex(setup.isIn() ? reply.data : sent);
    line["stalled"] = reply.isStalled;
    write(m_file.get(), line);
}

void RequestLog::serial(unsigned camera, UnitRequest const& request, Bytes const& packet,
                        UnitReply const& reply, Bytes const& answer)
{
    if (m_file == nullptr) {
        return;
    }
    Json line = makeLine(camera, "serial");
    line["request"] = requestName(request.code);
    line["unit"] = request.unit;
    line["selector"] = request.selector;
    line["length"] = request.length;
    line["data"] = toHex(request.code == setCur ? request.data : reply.data);
    line["refused"] = reply.isRefused();
    line["packet"] = toHex(packet);
    line["reply"] = toHex(answer);
    write(m_file.get(), line);
}

void RequestLog::event(unsigned camera, std::string const& name, std::string const& detail)
{
    if (m_file == nullptr) {
        return;
    }
    Json line = makeLine(camera, "event");
    line["event"] = name;
    if (!detail.empty()) {
        line["detail"] = detail;
    }
    write(m_file.get(), line);
}

} // namespace UsbCamera
