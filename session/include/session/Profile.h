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
    /// What became of a control.
    enum class Result {
        Same,    ///< The camera has the value.
        Set,     ///< It has it now, or when compared: it would have to be set.
        Rounded, ///< The camera made another value of it.
        Skipped, ///< Not tried: read-only, inactive, or the camera has no such control.
        Refused  ///< Tried in vain.
    };

    std::string name;    ///< The driver's name.
    Result result;       ///< What became of it.
    ControlValue wanted; ///< The profile's value.
    std::string actual;  ///< The camera's value as a text; empty when it could not be read.
    std::string reason;  ///< Why it was rounded, skipped or refused.
    bool isMet;          ///< Whether the camera has what is wanted now.
};

/// "same", "set", "rounded", "skipped" or "refused".
IMAGEACQUISITION_SESSION_EXPORT char const* toText(ControlOutcome::Result result) noexcept;

/// What became of a profile.
struct IMAGEACQUISITION_SESSION_EXPORT ProfileReport
{
    Selection wanted;                     ///< The profile's selection.
    Selection actual;                     ///< What the camera has.
    std::string selectionReason;          ///< Why they differ; empty when they do not.
    std::vector<ControlOutcome> controls; ///< Each control of the profile.

    /// Whether the camera is as the profile has it, but for what was skipped.
    bool isMet() const noexcept;
    /// A line for the selection, when it differs, and for each control that is not the same.
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
    /// What a camera has now: its selection, and every control that can be read and set. Left out
    /// is what cannot be set to the value that it has: what is read-only, held by another program,
    /// or inactive, for then an automatic has chosen the value; and of controls with the same name
    /// all but the first.
    /// @throws Error (Unplugged, Refused).
    static Profile take(Camera const& camera);

    /// Reads json(), or what a person wrote.
    /// @throws Error (BadRequest) with the place in the text.
    static Profile fromJson(std::string const& text);
    /// As JSON, with its version; docs/profiles.md has the schema.
    std::string json() const;

    /// Reads a file of json(), or replaces it as a whole; what is no file, such as /dev/stdout, is
    /// written to.
    /// @throws Error: BadRequest for its contents; NotFound, NoPermission or Refused for the file.
    static Profile load(std::string const& path);
    /// Writes json() in place of the file; errors as of load().
    void save(std::string const& path) const;

    /// Which camera it was taken from, as Found::text(): "serial:VC1001".
    std::string const& camera() const noexcept { return m_camera; }
    /// What frames are to be.
    Selection const& selection() const noexcept { return m_selection; }
    /// Names and values; of a profile that was taken, automatics first.
    std::vector<std::pair<std::string, ControlValue>> const& controls() const noexcept
    {
        return m_controls;
    }
    /// Adds a control at the end, or gives one that is there another value.
    void set(std::string const& name, ControlValue const& value);

    /// Holds a camera against the profile, and changes nothing. What cannot be set as the camera is
    /// now is skipped or refused, also where apply() would release it.
    ProfileReport compare(Camera const& camera) const;
    /**
     * Sets the selection and every control that is not as wanted, automatics before what they
     * govern, and reads back. What was inactive or refused is tried again when others were set, and
     * what others changed is set once more. What is refused is in the report, in the order in which
     * it was tried, and does not keep the rest from being set.
     * @throws Error (Unplugged), and Busy when the selection differs while the camera streams.
     */
    ProfileReport apply(Camera& camera) const;

private:
    std::string m_camera;
    Selection m_selection;
    std::vector<std::pair<std::string, ControlValue>> m_controls;
};

} // namespace ImageAcquisition::Session
