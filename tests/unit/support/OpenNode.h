// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>
#include <libv4l2.h>

#include <string>

/// A node opened the way a camera opens it.
class OpenNode
{
public:
    explicit OpenNode(std::string const& node = "/dev/video0")
        : m_descriptor(v4l2_open(node.c_str(), O_RDWR | O_NONBLOCK))
    {
    }
    OpenNode(OpenNode const&) = delete;
    OpenNode& operator=(OpenNode const&) = delete;
    ~OpenNode()
    {
        if (m_descriptor != -1) {
            v4l2_close(m_descriptor);
        }
    }

    int fd() const { return m_descriptor; }

private:
    int m_descriptor;
};
