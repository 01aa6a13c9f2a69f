// SPDX-License-Identifier: MIT
#pragma once

#include "session/Error.h"

#include <string>

namespace ImageAcquisition::Session
{

class Found;

/// The error of a call to a camera that failed with this `errno`, with the kind that it stands for
/// and a hint: who holds the node, who may open it. Where @p systemError says nothing of the sort,
/// or is 0, the camera refused. That the camera is gone stands in place of any other reason.
Error systemFailure(std::string const& operation, Found const& camera, int systemError,
                    std::string const& reason = {});

/// The same for streaming, which may have failed for lack of bandwidth: what the stream needs, what
/// the link is and who else is on the bus. @p wanted is the selection in words.
Error streamingFailure(std::string const& operation, Found const& camera, int systemError,
                       std::string const& wanted, std::string const& reason = {});

/// The kind that an `errno` of a call to a camera stands for.
ErrorKind kindOf(int systemError);

/// "held by PID (name), ..." from /proc; empty when nobody else, or nobody whom we may see, holds
/// the node.
std::string holdersOf(std::string const& node);

/// "/dev/video0 belongs to group video, and you are not in it".
std::string accessHint(std::string const& node);

} // namespace ImageAcquisition::Session
