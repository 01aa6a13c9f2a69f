// SPDX-License-Identifier: MIT
#pragma once

#include "session/ControlValue.h"
#include "session/Selection.h"
#include "session/SessionExport.h"

#include <string>
#include <utility>
#include <vector>

namespace ImageAcquisition::Session
{

class Camera;

/// What became of one control of a profile.
struct ControlOutcome
{
    enum class Result {
        Same,    ///< The camera has the value.
        Set,     ///< It has it now, or when compared: it would have to be set.
        Rounded, ///< The camera made another value of it.
        Skipped, ///< Not tried: read-only, inactive, or the camera has no such control.
        Refused  ///< Tried in vain.
    };

    std::string name; ///< The driver's name.
    Result result;
    ControlValue wanted;
    std::string actual; ///< The camera's value as a text; empty when it was not read.
    std::string reason; ///< Why it was rounded, skipped or refused.
};

/// "same", "set", "rounded", "skipped" or "refused".
IMAGEACQUISITION_SESSION_EXPORT char const* toText(ControlOutcome::Result result) noexcept;

/// What became of a profile.
struct IMAGEACQUISITION_SESSION_EXPORT ProfileReport
{
    Selection wanted;            ///< The profile's selection.
    Selection actual;            ///< What the camera has.
    std::string selectionReason; ///< Why they differ; empty when they do not.
    std::vector<ControlOutcome> controls;

    /// Whether the camera is as the profile has it, but for what was skipped.
    bool isMet() const noexcept;
    /// A line for each control that is not the same, for a person.
    std::string text() const;
};

/**
 * @brief A camera's selection and controls, to be kept and put back.
 *
 * A value. Threads: as any value; calls that take a camera are as the camera's.
 */
class IMAGEACQUISITION_SESSION_EXPORT Profile
{
public:
    /// What a camera has now: its selection, and every control that can be read and written.
    /// @throws Error (Unplugged, Refused).
    static Profile take(Camera const& camera);

    /// Reads json().
    /// @throws Error (BadRequest) with the place in the text.
    static Profile fromJson(std::string const& text);
    /// As JSON, with its version; docs/session.md has the schema.
    std::string json() const;

    /// Reads, or writes, a file of json().
    /// @throws Error: BadRequest for its contents; NotFound, NoPermission or Refused for the file.
    static Profile load(std::string const& path);
    void save(std::string const& path) const;

    /// Which camera it was taken from, as Found::text(): "serial:VC1001".
    std::string const& camera() const noexcept { return m_camera; }
    Selection const& selection() const noexcept { return m_selection; }
    /// Names and values in the order in which they are applied.
    std::vector<std::pair<std::string, ControlValue>> const& controls() const noexcept
    {
        return m_controls;
    }

    /// Holds a camera against the profile, and changes nothing.
    ProfileReport compare(Camera const& camera) const;
    /// Sets the selection and every control, automatics before what they govern, and reads back.
    /// What is refused is in the report, and does not keep the rest from being set.
    /// @throws Error (Unplugged), and Busy when the selection differs while the camera streams.
    ProfileReport apply(Camera& camera) const;

private:
    std::string m_camera;
    Selection m_selection;
    std::vector<std::pair<std::string, ControlValue>> m_controls;
};

} // namespace ImageAcquisition::Session
