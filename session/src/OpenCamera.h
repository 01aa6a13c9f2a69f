// SPDX-License-Identifier: MIT
#pragma once

#include "Connection.h"

#include "session/ControlValue.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

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

    /// A control was set, by a call().
    void noteSet(std::string const& name, ControlValue const& value)
    {
        std::lock_guard<std::mutex> const lock(m_notes);
        auto const known = std::find_if(m_setControls.begin(), m_setControls.end(),
                                        [&](auto const& set) { return set.first == name; });
        if (known == m_setControls.end()) {
            m_setControls.emplace_back(name, value);
        } else {
            known->second = value;
        }
    }
    /// What the controls were last set to that were set at all, by their names.
    std::vector<std::pair<std::string, ControlValue>> setControls() const
    {
        std::lock_guard<std::mutex> const lock(m_notes);
        return m_setControls;
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

    mutable std::mutex m_notes;
    std::vector<std::pair<std::string, ControlValue>> m_setControls;
};

} // namespace ImageAcquisition::Session
