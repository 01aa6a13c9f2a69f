// SPDX-License-Identifier: MIT
#pragma once

#include "CameraScript.h"

#include <linux/videodev2.h>

namespace VirtualCamera
{

/// The formats of one device and its present selection. Results are 0 or a negative errno.
class FormatState
{
public:
    explicit FormatState(CameraScript const& script);

    int enumerateFormats(v4l2_fmtdesc& description) const;
    int enumerateSizes(v4l2_frmsizeenum& size) const;
    int enumerateIntervals(v4l2_frmivalenum& interval) const;
    int currentFormat(v4l2_format& format) const;
    int tryFormat(v4l2_format& format) const;
    int setFormat(v4l2_format& format);
    int currentParameters(v4l2_streamparm& parameters) const;
    int setParameters(v4l2_streamparm& parameters);

    v4l2_pix_format const& pixels() const { return m_pixels; }
    Interval const& interval() const { return m_interval; }
    /// The script of the present format; null for one that is not offered.
    FormatScript const* present() const { return find(m_pixels.pixelformat); }

    /// Selects without asking what is offered.
    void force(std::uint32_t pixelFormat, std::uint32_t width, std::uint32_t height);
    void force(Interval const& interval) { m_interval = interval; }

private:
    FormatScript const* find(std::uint32_t pixelFormat) const;
    IntervalScript const* intervalsOf(FormatScript const& format, std::uint32_t width,
                                      std::uint32_t height) const;
    Interval firstInterval() const;
    v4l2_pix_format layout(std::uint32_t pixelFormat, std::uint32_t width,
                           std::uint32_t height) const;

    CameraScript const& m_script;
    v4l2_pix_format m_pixels{};
    Interval m_interval;
};

} // namespace VirtualCamera
