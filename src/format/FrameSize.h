// SPDX-License-Identifier: MIT
#pragma once

#include "IFrameSize.h"
#include "format/CatalogueBudget.h"
#include "format/FramePeriod.h"
#include "system/VideoNode.h"

#include <vector>

namespace ImageAcquisition
{

/// One discrete picture size of one pixel format, with its frame intervals.
class FrameSize : public virtual IFrameSize
{
public:
    /// Asks the device for the intervals, as far as the budget allows. The node stays the
    /// camera's.
    FrameSize(NodeReference node, unsigned int pixelformat, unsigned int width, unsigned int height,
              CatalogueBudget& budget);

    /// The same with a budget of its own.
    FrameSize(NodeReference node, unsigned int pixelformat, unsigned int width, unsigned int height,
              CatalogueBudget&& budget = {})
        : FrameSize(node, pixelformat, width, height, budget)
    {
    }

    bool isInvalid() const override { return false; }
    unsigned int width() const override { return m_width; }
    unsigned int height() const override { return m_height; }
    int bytesPerLine() const override;
    int periodNumber() const override { return static_cast<int>(m_periods.size()); }
    IFramePeriod const* period(int index) const override;

    /// Index of the first interval with just these two numbers, or -1.
    int intervalIndex(v4l2_fract const& interval) const;

private:
    void enumeratePeriods(unsigned int pixelformat, CatalogueBudget& budget);

    NodeReference m_node;
    unsigned int m_width;
    unsigned int m_height;
    std::vector<FramePeriod> m_periods;
};

/// Stands for a size that does not exist.
class InvalidFrameSize : public virtual IFrameSize
{
public:
    static InvalidFrameSize const& getUniqueInstance();

    bool isInvalid() const override { return true; }
    unsigned int width() const override { return 0; }
    unsigned int height() const override { return 0; }
    int bytesPerLine() const override { return 0; }
    int periodNumber() const override { return 0; }
    IFramePeriod const* period(int index) const override;
};

} // namespace ImageAcquisition
