// SPDX-License-Identifier: MIT
#pragma once

#include "IImageFormat.h"
#include "format/FrameSize.h"

#include <linux/videodev2.h>

#include <string>
#include <vector>

namespace ImageAcquisition
{

/// The four-character code as a text, its lowest byte first.
std::string fourCharacterCode(unsigned int pixelformat);

/// One pixel format of the device, with its sizes; programs a choice into the device.
class ImageFormat : public virtual IImageFormat
{
public:
    /// Asks the device for the sizes, as far as the budget allows. The node stays the
    /// camera's.
    ImageFormat(NodeReference node, v4l2_fmtdesc const& description, CatalogueBudget& budget);

    /// The same with a budget of its own.
    ImageFormat(NodeReference node, v4l2_fmtdesc const& description, CatalogueBudget&& budget = {})
        : ImageFormat(node, description, budget)
    {
    }

    bool isInvalid() const override { return false; }
    bool isCompressed() const override { return m_compressed; }
    bool isEmulated() const override { return m_emulated; }
    char const* name() const override { return m_name.c_str(); }
    char const* description() const override { return m_description.c_str(); }
    int sizeNumber() const override { return static_cast<int>(m_sizes.size()); }
    IFrameSize const* frameSize(int index) const override;

    /// Index of the first size of just this width and height, or -1.
    int frameSizeIndex(unsigned int width, unsigned int height) const;

    /// The size at @p index for those who need more than the interface offers.
    /// @throws std::out_of_range when there is none.
    FrameSize const& sizeAt(int index) const;

    /// Programs this format with a size and interval into the device. An interval index that the
    /// size does not have sends the invalid period, which drivers refuse or replace.
    /// @throws std::out_of_range for a negative size index.
    bool setToDevice(int sizeIndex, int intervalIndex) const;

    /// The same by value; the interval must match one of the size's in both numbers.
    bool setToDevice(int width, int height, int numerator, int denominator) const;

private:
    void enumerateSizes(CatalogueBudget& budget);
    bool setFormatToDevice(FrameSize const& size) const;

    NodeReference m_node;
    bool m_compressed;
    bool m_emulated;
    unsigned int m_pixelFormat;
    std::string m_name;
    std::string m_description;
    std::vector<FrameSize> m_sizes;
};

/// Stands for a format that does not exist.
class InvalidImageFormat : public virtual IImageFormat
{
public:
    static InvalidImageFormat const& getUniqueInstance();

    bool isInvalid() const override { return true; }
    bool isCompressed() const override { return false; }
    bool isEmulated() const override { return false; }
    char const* name() const override { return "Invalid"; }
    char const* description() const override { return "Invalid"; }
    int sizeNumber() const override { return 0; }
    IFrameSize const* frameSize(int index) const override;
};

} // namespace ImageAcquisition
