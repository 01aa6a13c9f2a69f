// SPDX-License-Identifier: MIT
#pragma once

#include <session/Picture.h>

#include <string>
#include <vector>

namespace Iacq
{

enum class OutputFormat { Png, Ppm, Raw };

/// The format that the user named, or else that the file's extension means.
/// @throws Failure when neither tells.
OutputFormat outputFormatOf(std::string const& named, std::string const& path);

std::vector<unsigned char> encodePng(ImageAcquisition::Session::Picture const& picture);
std::vector<unsigned char> encodePpm(ImageAcquisition::Session::Picture const& picture);

} // namespace Iacq
