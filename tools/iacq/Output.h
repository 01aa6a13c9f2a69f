// SPDX-License-Identifier: MIT
#pragma once

#include "FileWriting.h"

#include <string>

namespace Iacq
{

/// Name of one of several files: a "%d" or "%04d" in @p path becomes the number; without one,
/// "-0001" is put in front of the extension. Any other "%" stays as it is. A single file keeps its
/// name, and so does a device or a pipe, which takes all of them.
/// @throws Failure when @p path has two places for the number.
std::string numberedPath(std::string const& path, int number, int count);

/// Prints to standard output and makes sure that it arrived. Texts from cameras go through
/// printable() or jsonText() first.
/// @throws Failure when it did not, as on a full disk or a closed pipe.
void print(std::string const& text);

/// Closes standard output, which is when some file systems tell that the disk is full.
/// @throws Failure when they do.
void closeStandardOutput();

} // namespace Iacq
