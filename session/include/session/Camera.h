// SPDX-License-Identifier: MIT
#pragma once

#include "session/Control.h"
#include "session/Error.h"
#include "session/Found.h"
#include "session/Selection.h"
#include "session/SessionExport.h"
#include "session/Stream.h"
#include "session/StreamOptions.h"

#include <memory>
#include <string>
#include <vector>

namespace ImageAcquisition
{
class IBlockingCamera;
}

namespace ImageAcquisition::Session
{

class Capture;
class OpenCamera;

/**
 * @brief An open camera.
 *
 * Movable. Controls, streams and frames keep what they need of it, so that all of them may go in
 * any order.
 *
 * Threads: a camera may be used from any thread; its calls wait for one another, but not for
 * frames.
 */
class IMAGEACQUISITION_SESSION_EXPORT Camera
{
public:
    /// Opens the camera that a text means: an index, a node, "serial:...", "port:...", "name:...",
    /// "id:..."; see findCamera().
    /// @throws Error of findCamera(), or of open(Found const&).
    static Camera open(std::string const& text);

    /**
     * @brief Opens a camera that was found.
     *
     * One of the vendor's cameras that does not answer over its serial link is reset.
     * @throws Error NoPermission, Unplugged, Busy, or Refused with what stands in the way of the
     * serial link.
     */
    static Camera open(Found const& found);

    /// A camera that was moved from can only be assigned to or destroyed.
    Camera(Camera&& other) noexcept;
    /// Lets go of the camera that was held.
    Camera& operator=(Camera&& other) noexcept;
    ~Camera();

    /// The record that it was opened with.
    Found found() const;

    /// What the camera offers, in the driver's order.
    std::vector<FormatOffer> offers() const;

    /// What is set now, asked from the camera; parts that it does not tell are left out.
    Selection selection() const;

    /**
     * @brief Selects what frames are to be: `select("YUYV 640x480@30")`.
     *
     * What the wish leaves out stays as it is set; where that does not go together, the first in
     * the driver's order that does is taken. Rates such as 29.97 mean 30000/1001: the nearest
     * one counts as exact when it is less than half a thousandth, or less than 0.005 frames, away.
     *
     * With `nearest` the format, when it is named, must be met; then the size with the least sum of
     * the differences in width and height is taken, the earlier of two; then the rate with the
     * least difference, the faster of two. In a range of sizes that is the nearest step.
     * @return what is set now, read back from the camera.
     * @throws Error BadRequest for a text that makes no sense; Unsupported, with what there is;
     * Busy while the camera streams; Refused when the driver refused or, unless `nearest`, set
     * something else, which is then in effect.
     */
    Selection select(std::string const& text, Match match = Match::Exact);
    /// As select(std::string const&, Match).
    Selection select(Selection const& wish, Match match = Match::Exact);

    /// Every control, in the library's order.
    std::vector<Control> controls() const;

    /**
     * @brief The control of this name.
     *
     * Tried in this order: the driver's name, the kernel's short form of it, and the purpose,
     * whichever kind of camera it is: `exposure`, `auto_exposure`, `gain`, `focus`, `auto_focus`,
     * `brightness`, `white_balance`, ...: docs/session.md lists them.
     * @throws Error NotFound, with the nearest names; Ambiguous when a short form fits several.
     */
    Control control(std::string const& name) const;
    /// As control().
    Control operator[](std::string const& name) const { return control(name); }

    /**
     * @brief Sets several controls, in their order, once nothing is found against any of them.
     *
     * Names, values and states are judged first. That a control is inactive counts only where no
     * switch or menu before it can have activated it.
     * @throws Error: that of control(), set() or press(), or where several assignments are wrong
     * one that tells all of it, as NotFound or Ambiguous when a name is; then nothing was set. What
     * only the camera refuses ends it, and what comes before that stays set.
     */
    void set(std::vector<Assignment> const& assignments) const;

    /// Starts streaming what is selected.
    /// @throws Error Busy, NoBandwidth, Unplugged, NoPermission or Refused; nothing is then held.
    Stream stream(StreamOptions const& options = {});

    /// The library's camera, for what this class does not offer. It is good until the camera is
    /// opened anew or goes. Capture calls belong to the stream while there is one.
    IBlockingCamera& interface() const;

private:
    friend class Capture;

    explicit Camera(std::shared_ptr<OpenCamera> camera) noexcept;

    std::shared_ptr<OpenCamera> m_camera;
};

} // namespace ImageAcquisition::Session
