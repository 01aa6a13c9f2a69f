// SPDX-License-Identifier: MIT
#pragma once

#include "Connection.h"

#include "session/ControlValue.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace ImageAcquisition::Session
{

class Capture;

/**
 * What the handles on one camera share: Camera, its controls and its stream. Calls on formats and
 * controls go through call(), one at a time, and never wait for frames in there.
 */
class OpenCamera
{
public:
    explicit OpenCamera(std::shared_ptr<Connection> connection)
        : m_connection(std::move(connection))
    {
    }

    /// Calls @p action with the present connection, while no other call runs.
    template <typename Action>
    auto call(Action action) const
    {
        std::lock_guard<std::mutex> const lock(m_calls);
        return action(m_connection);
    }

    /// The present connection.
    std::shared_ptr<Connection> connection() const
    {
        return call([](std::shared_ptr<Connection> const& present) { return present; });
    }

    /// The camera was opened anew.
    void reconnect(std::shared_ptr<Connection> connection)
    {
        std::lock_guard<std::mutex> const lock(m_calls);
        m_connection = std::move(connection);
    }

    /// A control was set: only within a call().
    void noteSet(std::string const& name, ControlValue const& value)
    {
        m_setControls.insert_or_assign(name, value);
    }
    void forgetSetControls()
    {
        std::lock_guard<std::mutex> const lock(m_calls);
        m_setControls.clear();
    }
    /// What the controls were last set to that were set at all, by their names.
    std::map<std::string, ControlValue> setControls() const
    {
        return call([this](auto const&) { return m_setControls; });
    }

    /// The stream that runs, if one does.
    std::shared_ptr<Capture> capture() const
    {
        std::lock_guard<std::mutex> const lock(m_calls);
        return m_capture.lock();
    }
    void setCapture(std::weak_ptr<Capture> capture)
    {
        std::lock_guard<std::mutex> const lock(m_calls);
        m_capture = std::move(capture);
    }

private:
    mutable std::mutex m_calls;
    std::shared_ptr<Connection> m_connection;
    std::weak_ptr<Capture> m_capture;
    std::map<std::string, ControlValue> m_setControls;
};

} // namespace ImageAcquisition::Session
