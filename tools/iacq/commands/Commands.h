// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace Iacq
{

struct CaptureOptions
{
    std::string camera;
    std::string output;
    std::string outputFormat;
    std::string format;
    std::string size;
    std::string interval;
    std::string frameRate;
    int count = 1;
    int buffers = 4;
};

struct MonitorOptions
{
    bool json = false;
    int count = 0;      ///< How many events to wait for; 0 means no limit.
    double timeout = 0; ///< Seconds to run; 0 means no limit.
};

// One for each subcommand. Each throws Failure when it cannot do what it should.
void list(bool json);
void show(std::string const& camera, bool json);
void capture(CaptureOptions const& options);
void get(std::string const& camera, std::vector<std::string> const& names, bool json);
void set(std::string const& camera, std::vector<std::string> const& assignments);
void monitor(MonitorOptions const& options);
void reset(std::string const& camera);

} // namespace Iacq
