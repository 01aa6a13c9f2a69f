// SPDX-License-Identifier: MIT
#include "VideoFormats.h"

namespace UsbCamera
{

namespace
{

constexpr std::uint32_t perSecond(std::uint32_t frames)
{
    return 10000000 / frames;
}

} // namespace

std::vector<VideoFormat> const& videoFormats()
{
    static std::vector<VideoFormat> const formats{
        {VideoFormat::Kind::Yuyv,
         {{640, 480, {perSecond(30), perSecond(20), perSecond(15), perSecond(5)}},
          {160, 120, {perSecond(60), perSecond(30)}},
          {320, 240, {perSecond(30), perSecond(15)}},
          {1280, 960, {perSecond(10), perSecond(5)}}}},
        {VideoFormat::Kind::Mjpeg,
         {{640, 480, {perSecond(30), perSecond(15)}},
          {320, 240, {perSecond(60), perSecond(30)}},
          {1280, 720, {perSecond(30), perSecond(10)}}}}};
    return formats;
}

} // namespace UsbCamera
