// SPDX-License-Identifier: MIT
#include "CurrentLayout.h"

#include "OwnNode.h"

#include <IFramePeriod.h>
#include <IFrameSize.h>
#include <IImageFormat.h>

#include <algorithm>
#include <stdexcept>

namespace ImageAcquisition::Session
{

namespace
{

/// What the library has an object for.
FrameLayout listedLayout(IBlockingCamera const& camera)
{
    FrameLayout layout;
    try {
        IImageFormat const& format = *camera.currentImageFormat();
        IFrameSize const& size = *camera.currentFrameSize();
        IFramePeriod const& period = *camera.currentFrameInterval();
        if (!format.isInvalid() && !size.isInvalid()) {
            layout.selection.format = format.name();
            layout.selection.width = size.width();
            layout.selection.height = size.height();
            layout.bytesPerLine = static_cast<unsigned int>(
                format.isCompressed() ? 0 : std::max(size.bytesPerLine(), 0));
        }
        if (!period.isInvalid() && period.numerator() != 0) {
            layout.selection.rate = {period.denominator(), period.numerator()};
        }
    } catch (std::out_of_range const&) {
        // The device is set to a format that it does not list.
    }
    return layout;
}

bool isCompressed(IBlockingCamera const& camera, std::string const& format)
{
    for (int i = 0; i < camera.formatNumber(); ++i) {
        if (format == camera.format(i)->name()) {
            return camera.format(i)->isCompressed();
        }
    }
    return false;
}

} // namespace

FrameLayout currentLayout(Connection const& connection)
{
    FrameLayout layout = listedLayout(connection.camera());
    Selection& selection = layout.selection;
    OwnNode node(connection.node());
    if (selection.format.empty()) {
        if (auto const set = node.format()) {
            selection.format = nameOf(set->pixelformat);
            selection.width = set->width;
            selection.height = set->height;
            layout.bytesPerLine =
                isCompressed(connection.camera(), selection.format) ? 0 : set->bytesperline;
        }
    }
    if (!selection.rate.isSaid()) {
        selection.rate = node.rate().value_or(FrameRate{});
    }
    return layout;
}

} // namespace ImageAcquisition::Session
