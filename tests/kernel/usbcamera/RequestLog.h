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
    explicit RequestLog(std::string const& fileName);

    void control(unsigned camera, SetupPacket const& setup, Bytes const& sent,
                 ControlReply const& reply);
    void serial(unsigned camera, UnitRequest const& request, Bytes const& packet,
                UnitReply const& reply, Bytes const& answer);
    void event(unsigned camera, std::string const& name, std::string const& detail = "");

private:
    struct Closer
    {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    std::unique_ptr<std::FILE, Closer> m_file;
};

} // namespace UsbCamera
