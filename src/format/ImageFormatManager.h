// SPDX-License-Identifier: MIT
#pragma once

#include "format/ImageFormat.h"

#include <map>
#include <memory>
#include <vector>

namespace ImageAcquisition
{

/// The formats of one open device. Keeps no selection of its own: the device is asked each time.
class ImageFormatManager
{
public:
    /// Asks the device for its formats. Called once; the node stays the camera's.
    void init(NodeReference node);

    int formatNumber() const { return static_cast<int>(m_formats.size()); }

    /// @throws std::out_of_range when there is no such format.
    ImageFormat* formatPtr(int index) const;

    /// The first format of this name, or null.
    ImageFormat* formatPtr(char const* name) const;

    /// The format, or the invalid one.
    IImageFormat const* format(int index) const;

    /// Index of the first format of this code, or -1.
    int formatIndexByPixelFormat(unsigned int pixelformat) const;

    /// @throws std::out_of_range for a negative format or size index.
    bool setCurrentFormat(int formatIndex, int sizeIndex, int intervalIndex);
    bool setCurrentFormat(char const* name, int width, int height, int numerator, int denominator);

    /// Bytes that one frame of the device's format needs; 0, and errno as it was, when the device
    /// does not answer.
    unsigned int currentSizeImage() const;

    // Indices of what is set on the device, or -1. The latter two throw std::out_of_range when the
    // device's pixel format is not in the catalogue.
    int currentFormat() const;
    int currentFrameSize() const { return currentSelection().size; }
    int currentFrameInterval() const { return currentInterval(currentSelection()); }

    // The same as objects, the invalid ones for -1. They throw as the indices do.
    IFrameSize const* frameSizeOfDevice() const;
    IFramePeriod const* framePeriodOfDevice() const;

    /// Whether no pixel format was listed twice.
    bool invariants() const { return m_formats.size() == m_indexByPixelFormat.size(); }

private:
    /// A format of the catalogue, or null, and the index of one of its sizes, or -1.
    struct Selection
    {
        ImageFormat const* format = nullptr;
        int size = -1;
    };

    /// Asks the device for its format.
    Selection currentSelection() const;

    /// Asks the device for its interval, of which the index is returned.
    int currentInterval(Selection const& selection) const;

    NodeReference m_node = -1;
    std::vector<std::unique_ptr<ImageFormat>> m_formats;
    std::map<unsigned int, int> m_indexByPixelFormat;
};

} // namespace ImageAcquisition
