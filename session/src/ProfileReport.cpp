// SPDX-License-Identifier: MIT
#include "session/Profile.h"

#include <algorithm>
#include <iterator>

namespace ImageAcquisition::Session
{

namespace
{

std::string line(ControlOutcome const& outcome)
{
    std::string text =
        outcome.name + ": " + toText(outcome.result) + ", wanted '" + outcome.wanted.text() + "'";
    if (!outcome.isMet && !outcome.actual.empty()) {
        text += ", has '" + outcome.actual + "'";
    }
    return outcome.reason.empty() ? text : text + ": " + outcome.reason;
}

} // namespace

char const* toText(ControlOutcome::Result result) noexcept
{
    static constexpr char const* texts[] = {"same", "set", "rounded", "skipped", "refused"};
    auto const position = static_cast<std::size_t>(result);
    return position < std::size(texts) ? texts[position] : "unknown";
}

bool ProfileReport::isMet() const noexcept
{
    return selectionReason.empty() &&
           std::all_of(controls.begin(), controls.end(), [](ControlOutcome const& outcome) {
               return outcome.isMet || outcome.result == ControlOutcome::Result::Skipped;
           });
}

std::string ProfileReport::text() const
{
    std::string lines;
    if (!selectionReason.empty()) {
        lines = "selection: wanted '" + wanted.text() + "', has '" + actual.text() +
                "': " + selectionReason + "\n";
    }
    for (ControlOutcome const& outcome : controls) {
        if (outcome.result != ControlOutcome::Result::Same) {
            lines += line(outcome) + "\n";
        }
    }
    return lines;
}

} // namespace ImageAcquisition::Session
