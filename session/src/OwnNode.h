// SPDX-License-Identifier: MIT
#pragma once

#include "session/Selection.h"
#include "system/VideoNode.h"

#include <linux/videodev2.h>

#include <optional>
#include <string>
#include <vector>

namespace ImageAcquisition::Session
{

/// The camera's node opened once more, for the ranges of sizes and rates, which the library's
/// interfaces have no words for. Opened when it is first asked.
class OwnNode
{
public:
    explicit OwnNode(std::string path) : m_path(std::move(path)) {}

    /// 0, or the `errno` with which the node could not be opened.
    int openingError();

    /// The range of sizes of a format; nothing when it has none.
    std::optional<SizeOffer> sizeRange(std::string const& format);
    /// Fills the rates of a size, when they are a range.
    void addRateRange(std::string const& format, SizeOffer& size);

    /// What is set now.
    std::optional<v4l2_pix_format> format();
    std::optional<FrameRate> rate();

    /// Both set `errno` and are false when the driver refused.
    bool setFormat(std::string const& format, unsigned int width, unsigned int height);
    bool setRate(FrameRate rate);

private:
    bool ask(unsigned long request, void* argument);

    std::string m_path;
    VideoNode m_node;
};

/// "YUYV" as the kernel's number, and back.
unsigned int pixelFormatOf(std::string const& name);
std::string nameOf(unsigned int pixelFormat);

} // namespace ImageAcquisition::Session
