// SPDX-License-Identifier: MIT
#include "NodeName.h"

#include "Names.h"
#include "Parsing.h"

#include <stdlib.h>

#include <memory>

namespace ImageAcquisition::Session
{

namespace
{

constexpr char devDirectory[] = "/dev/";

/// Resolves the links that udev makes in /dev/v4l.
std::string resolved(std::string const& path)
{
    std::unique_ptr<char, decltype(&free)> const target(realpath(path.c_str(), nullptr), free);
    return target ? target.get() : path;
}

} // namespace

std::string nodeName(std::string const& text)
{
    bool const isPath = text.find('/') != std::string::npos;
    std::string const path = isPath && !startsWith(text, "/dev/video") ? resolved(text) : text;
    std::string const name =
        startsWith(path, devDirectory) ? path.substr(sizeof devDirectory - 1) : path;
    return startsWith(name, "video") && parseCount(name.substr(5)) ? name : "";
}

} // namespace ImageAcquisition::Session
