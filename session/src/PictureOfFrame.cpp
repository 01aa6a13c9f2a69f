// SPDX-License-Identifier: MIT
// Apart from the rest, which needs no streams.
#include "session/Error.h"
#include "session/Frame.h"
#include "session/Picture.h"

namespace ImageAcquisition::Session
{

void Picture::convert(Frame const& frame)
{
    if (!frame) {
        m_width = 0;
        m_height = 0;
        throw Error({ErrorKind::Refused, "convert a frame", "there is no frame"});
    }
    Selection const& selection = frame.selection();
    convert(frame.bytes(),
            {selection.format, selection.width, selection.height, frame.bytesPerLine()});
}

} // namespace ImageAcquisition::Session
