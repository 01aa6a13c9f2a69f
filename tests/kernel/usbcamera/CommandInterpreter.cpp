// SPDX-License-Identifier: MIT
#include "CommandInterpreter.h"

#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>

namespace UsbCamera
{

namespace
{

std::uint32_t number(Words const& words, std::size_t position, std::uint32_t otherwise,
                     std::uint32_t limit = std::numeric_limits<std::uint32_t>::max())
{
    if (words.size() <= position) {
        return otherwise;
    }
    std::size_t used = 0;
    unsigned long value = 0;
    try {
        value = std::stoul(words[position], &used, 0);
    } catch (std::logic_error const&) {
        used = 0;
    }
    if (used == 0 || used != words[position].size() || value > limit) {
        throw std::invalid_argument("not a number, or too large: " + words[position]);
    }
    return static_cast<std::uint32_t>(value);
}

std::uint32_t number(Words const& words, std::size_t position)
{
    if (words.size() <= position) {
        throw std::invalid_argument("a number is missing");
    }
    return number(words, position, 0);
}

std::uint8_t byte(Words const& words, std::size_t position)
{
    number(words, position);
    return static_cast<std::uint8_t>(number(words, position, 0, 0xff));
}

std::string const& text(Words const& words, std::size_t position)
{
    if (words.size() <= position) {
        throw std::invalid_argument("an argument is missing");
    }
    return words[position];
}

std::optional<std::uint8_t> byteOrAny(Words const& words, std::size_t position)
{
    if (text(words, position) == "any") {
        return std::nullopt;
    }
    return byte(words, position);
}

std::string addStall(CameraDevice& camera, Words const& words)
{
    if (text(words, 1) == "vendor") {
        camera.faults().vendorStalls = number(words, 2, 1);
        return "";
    }
    StallFault stall;
    stall.unit = byteOrAny(words, 1);
    stall.selector = byteOrAny(words, 2);
    if (text(words, 3) != "any") {
        stall.request = requestCode(words[3]);
    }
    stall.remaining = number(words, 4, 1);
    stall.error = static_cast<UvcError>(number(words, 5, 1, 0xff));
    camera.faults().stalls.push_back(stall);
    return "";
}

std::string setSerialMode(CameraDevice& camera, Words const& words)
{
    static std::map<std::string, SerialMode> const modes{{"normal", SerialMode::Normal},
                                                         {"silent", SerialMode::Silent},
                                                         {"slow", SerialMode::Slow},
                                                         {"split", SerialMode::Split},
                                                         {"short", SerialMode::Short}};
    auto const found = modes.find(text(words, 1));
    if (found == modes.end()) {
        throw std::invalid_argument("a serial port is normal, silent, slow, split or short");
    }
    Faults& faults = camera.faults();
    faults.serialMode = found->second;
    if (found->second == SerialMode::Short) {
        faults.serialSize = number(words, 2);
    } else if (found->second == SerialMode::Slow || found->second == SerialMode::Split) {
        faults.serialDelay = std::chrono::milliseconds(number(words, 2));
    }
    return "";
}

std::string unplug(CameraDevice& camera, Words const& words)
{
    std::string const when = words.size() > 1 ? words[1] : "now";
    if (when == "now") {
        camera.unplug("by command");
    } else if (when == "frame") {
        camera.faults().unplugAtFrame = number(words, 2);
    } else if (when == "control") {
        camera.faults().unplugInControl = number(words, 2, 1);
    } else if (when == "serial") {
        camera.faults().unplugInSerial = number(words, 2, 1);
    } else {
        throw std::invalid_argument("unplug now, at a frame, in a control or a serial request");
    }
    return "";
}

std::string describe(CameraDevice& camera)
{
    nlohmann::ordered_json status;
    status["kind"] = camera.model().kind;
    status["speed"] = speedName(camera.model().speed);
    status["serialPort"] = camera.model().hasSerialPort;
    status["port"] = camera.model().port;
    status["controller"] = camera.model().controller;
    status["plugged"] = camera.isPlugged();
    status["plugs"] = camera.plugged();
    status["streaming"] = camera.stream().isRunning();
    status["held"] = camera.stream().isHeld();
    status["frame"] = camera.stream().frameNumber();
    status["serialPackets"] = camera.serial().packets();
    status["serialPending"] = camera.serial().pending();
    return status.dump();
}

} // namespace

CommandInterpreter::CommandInterpreter(std::vector<std::unique_ptr<CameraDevice>>& cameras,
                                       RequestLog& log)
    : m_cameras(cameras), m_log(log)
{
    addPlugCommands();
    addStreamCommands();
    addControlCommands();
    addOtherCommands();
}

void CommandInterpreter::addPlugCommands()
{
    m_handlers["unplug"] = unplug;
    m_handlers["plug"] = [](CameraDevice& camera, Words const&) {
        camera.plug();
        return std::string();
    };
    m_handlers["firmware"] = [](CameraDevice& camera, Words const& words) {
        camera.model().firmware = firmwareReply(text(words, 1));
        return std::string();
    };
}

void CommandInterpreter::addStreamCommands()
{
    m_handlers["corrupt"] = [](CameraDevice& camera, Words const& words) {
        camera.faults().corruptedFrames[number(words, 1)] = true;
        return std::string();
    };
    m_handlers["cut"] = [](CameraDevice& camera, Words const& words) {
        camera.faults().cutFrames[number(words, 1)] = number(words, 2);
        return std::string();
    };
    m_handlers["hold"] = [](CameraDevice& camera, Words const& words) {
        camera.faults().holdAtFrame = number(words, 1, 0);
        return std::string();
    };
    m_handlers["release"] = [](CameraDevice& camera, Words const&) {
        camera.faults().holdAtFrame.reset();
        return std::string();
    };
}

void CommandInterpreter::addControlCommands()
{
    m_handlers["stall"] = addStall;
    m_handlers["serial"] = setSerialMode;
    m_handlers["length"] = [](CameraDevice& camera, Words const& words) {
        camera.faults().lengths[{byte(words, 1), byte(words, 2)}] =
            static_cast<std::uint16_t>(number(words, 3, 0, 0xffff));
        return std::string();
    };
    m_handlers["get"] = [](CameraDevice& camera, Words const& words) {
        return toHex(camera.controls().current(byte(words, 1), byte(words, 2)));
    };
    m_handlers["set"] = [](CameraDevice& camera, Words const& words) {
        camera.controls().change(byte(words, 1), byte(words, 2), fromHex(text(words, 3)));
        return std::string();
    };
}

void CommandInterpreter::addOtherCommands()
{
    m_handlers["status"] = [](CameraDevice& camera, Words const&) { return describe(camera); };
    m_handlers["clear"] = [](CameraDevice& camera, Words const&) {
        camera.faults() = Faults{};
        return std::string();
    };
    m_handlers["mark"] = [this](CameraDevice&, Words const& words) {
        m_log.event(m_current, "mark", text(words, 1));
        return std::string();
    };
    m_handlers["quit"] = [this](CameraDevice&, Words const&) {
        m_isQuitting = true;
        return std::string();
    };
}

std::string CommandInterpreter::executeWords(unsigned camera, Words const& words)
{
    if (camera == 0 || camera > m_cameras.size()) {
        return "error there is no camera " + std::to_string(camera);
    }
    auto const handler = words.empty() ? m_handlers.end() : m_handlers.find(words[0]);
    if (handler == m_handlers.end()) {
        std::string known;
        for (auto const& entry : m_handlers) {
            known += " " + entry.first;
        }
        return "error the commands are" + known;
    }
    m_current = camera;
    std::string const result = handler->second(*m_cameras[camera - 1], words);
    return result.empty() ? "ok" : "ok " + result;
}

std::string CommandInterpreter::execute(std::string const& line)
{
    std::istringstream stream(line);
    unsigned camera = 0;
    stream >> camera;
    Words words;
    std::string word;
    while (stream >> word) {
        words.push_back(word);
    }
    try {
        return executeWords(camera, words);
    } catch (std::exception const& error) {
        return std::string("error ") + error.what();
    }
}

} // namespace UsbCamera
