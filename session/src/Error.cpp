// SPDX-License-Identifier: MIT
#include "session/Error.h"

#include <iterator>
#include <system_error>
#include <utility>

namespace ImageAcquisition::Session
{

namespace
{

/// As strerror(), which other threads may call at the same time.
std::string systemText(int error)
{
    return std::generic_category().message(error);
}

std::string line(ErrorDetails const& details)
{
    std::string text = details.operation;
    for (std::string const& part :
         {details.node, details.reason.empty() ? toText(details.kind) : details.reason,
          details.systemError == 0 ? std::string() : systemText(details.systemError)}) {
        if (!part.empty() && text.find(part) == std::string::npos) {
            text += (text.empty() ? "" : ": ") + part;
        }
    }
    return details.hint.empty() ? text : text + " (" + details.hint + ")";
}

} // namespace

char const* toText(ErrorKind kind) noexcept
{
    static constexpr char const* texts[] = {"not found", "ambiguous",   "busy",    "no permission",
                                            "unplugged", "unsupported", "refused", "no bandwidth",
                                            "timed out", "bad request"};
    auto const position = static_cast<std::size_t>(kind);
    return position < std::size(texts) ? texts[position] : "unknown";
}

Error::Error(ErrorDetails details)
    : std::runtime_error(line(details)),
      m_details(std::make_shared<ErrorDetails const>(std::move(details)))
{
}

Error::Error(Error const&) noexcept = default;
Error& Error::operator=(Error const&) noexcept = default;
Error::~Error() = default;

} // namespace ImageAcquisition::Session
