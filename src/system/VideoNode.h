// SPDX-License-Identifier: MIT
#pragma once

#include "factory/HelperV4l2.h"
#include "system/EarlierErrno.h"

namespace ImageAcquisition
{

/// Owns an open video node.
class VideoNode
{
public:
    VideoNode() = default;
    VideoNode(VideoNode const&) = delete;
    VideoNode& operator=(VideoNode const&) = delete;
    ~VideoNode() { close(); }

    /// Opens a node for reading and writing, without waiting for its frames. False, and errno, when
    /// it cannot be opened.
    bool open(char const* path);

    /// Closes the node, if it is open.
    void close();

    bool isOpen() const { return m_descriptor != -1; }

    /// The descriptor, or -1.
    int descriptor() const { return m_descriptor; }

    /// NodeReference::xioctl() of the node.
    int xioctl(unsigned long request, void* argument) const;

private:
    int m_descriptor = -1;
};

/// The node that somebody works with and somebody else owns, and whose owner may open and close it
/// meanwhile: a VideoNode, or a bare descriptor that stays open for as long as the reference is
/// used.
class NodeReference
{
public:
    NodeReference(int descriptor) : m_descriptor(descriptor) {}
    /// The node must outlive the reference.
    NodeReference(VideoNode const& node) : m_node(&node) {}
    NodeReference(VideoNode const&& node) = delete;

    /// The descriptor, or -1.
    int descriptor() const { return m_node == nullptr ? m_descriptor : m_node->descriptor(); }

    /// HelperV4l2::xioctl() of the node. errno is changed by a failure only: neither by an
    /// interruption nor by what libv4l2 tries in vain on its way.
    int xioctl(unsigned long request, void* argument) const
    {
        EarlierErrno const earlier;
        return earlier.unlessFailed(HelperV4l2::xioctl(descriptor(), request, argument));
    }

private:
    VideoNode const* m_node = nullptr;
    int m_descriptor = -1;
};

inline int VideoNode::xioctl(unsigned long request, void* argument) const
{
    return NodeReference(*this).xioctl(request, argument);
}

} // namespace ImageAcquisition
