// SPDX-License-Identifier: MIT
#pragma once

#include "session/Found.h"

#include <IBlockingCamera.h>

#include <atomic>
#include <memory>
#include <string>

namespace ImageAcquisition::Session
{

/**
 * One opening of a camera: the record, and the library's camera that was made from it. A stream
 * that stays on makes a new one when the camera comes back; who holds on to an old one, because of
 * a control or a frame that was lent, keeps that alive until he lets go.
 */
class Connection
{
public:
    /// @throws Error when the camera cannot be opened.
    static std::shared_ptr<Connection> open(Found const& found);

    Connection(Found found, std::unique_ptr<IBlockingCamera> camera);

    Found const& found() const { return m_found; }
    std::string node() const { return m_found.node(); }
    IBlockingCamera& camera() const { return *m_camera; }

    /// The camera's buffers are one stream's at a time, as long as a frame of it is lent. False
    /// while they are another's.
    bool takeBuffers() { return !m_buffersTaken.exchange(true); }
    void giveBuffersBack() { m_buffersTaken = false; }

private:
    Found m_found;
    std::unique_ptr<IBlockingCamera> m_camera;
    std::atomic<bool> m_buffersTaken{false};
};

} // namespace ImageAcquisition::Session
