// SPDX-License-Identifier: MIT
#pragma once

#include "ControlEndpoint.h"

#include <cstdio>
#include <memory>
#include <string>

namespace UsbCamera
{

/// Writes what the cameras see as JSON, one object a line, each line as soon as it happens.
class RequestLog
{
public:
    /// An empty name: nothing is written. Throws std::system_error when the file can't be made.
    explicit RequestLog(const std::string& fileName);

    void control(unsigned camera, const SetupPacket& setup, const Bytes& sent,
                 const ControlReply& reply);
    void serial(unsigned camera, const UnitRequest& request, const Bytes& packet,
                const UnitReply& reply, const Bytes& answer);
    void event(unsigned camera, const std::string& name, const std::string& detail = "");

private:
    struct Closer
    {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    std::unique_ptr<std::FILE, Closer> _file;
};

} // namespace UsbCamera
