// SPDX-License-Identifier: MIT
#include "session/Camera.h"

#include <algorithm>

namespace ImageAcquisition::Session
{

namespace
{

bool isWrongName(Error const& error)
{
    return error.kind() == ErrorKind::NotFound || error.kind() == ErrorKind::Ambiguous;
}

/// All of them as one, of the kind of a wrong name if there is any.
Error together(std::vector<Error> const& errors, std::string const& node)
{
    if (errors.size() == 1) {
        return errors.front();
    }
    std::string reasons;
    for (Error const& error : errors) {
        reasons += (reasons.empty() ? "" : "; ") + error.operation() + ": " + error.reason() +
                   (error.hint().empty() ? "" : " (" + error.hint() + ")");
    }
    auto const wrongName = std::find_if(errors.begin(), errors.end(), isWrongName);
    return Error({wrongName == errors.end() ? errors.front().kind() : wrongName->kind(),
                  "set controls", reasons, node});
}

} // namespace

void Camera::set(std::vector<Assignment> const& assignments) const
{
    std::vector<Control> found;
    std::vector<Error> errors;
    bool mayBeInactive = false;
    for (Assignment const& assignment : assignments) {
        try {
            found.push_back(control(assignment.name));
            if (auto const error = found.back().objection(assignment.value, mayBeInactive)) {
                errors.push_back(*error);
            }
            mayBeInactive = mayBeInactive || found.back().mayActivateOthers();
        } catch (Error const& error) {
            errors.push_back(error);
        }
    }
    if (!errors.empty()) {
        throw together(errors, this->found().node());
    }
    for (std::size_t i = 0; i < found.size(); ++i) {
        assignments[i].value ? found[i].set(*assignments[i].value) : found[i].press();
    }
}

} // namespace ImageAcquisition::Session
