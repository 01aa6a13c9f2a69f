// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace ImageAcquisition
{

/// Runs a tool of the system and takes what it prints.
class SystemTool
{
public:
    /// What the tool wrote to its standard output; empty when it could not be started, did not
    /// finish in so many milliseconds or printed without end, in which cases it and its children
    /// are killed.
    static QByteArray run(QString const& program, QStringList const& arguments, int milliseconds);
};

} // namespace ImageAcquisition
