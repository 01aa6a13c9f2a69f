// SPDX-License-Identifier: MIT
#include "system/VideoNode.h"

#include <fcntl.h>
#include <libv4l2.h>

namespace ImageAcquisition
{

bool VideoNode::open(char const* path)
{
    close();
    m_descriptor = v4l2_open(path, O_RDWR | O_NONBLOCK);
    return isOpen();
}

void VideoNode::close()
{
    if (isOpen()) {
        HelperV4l2::close(m_descriptor);
        m_descriptor = -1;
    }
}

} // namespace ImageAcquisition
