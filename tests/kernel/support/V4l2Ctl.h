// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

namespace KernelTest
{

/// Runs v4l2-ctl on a node; throws std::runtime_error with its output when it fails.
std::string v4l2Ctl(std::string const& node, std::string const& arguments);

struct ListedSize
{
    unsigned width = 0;
    unsigned height = 0;
    std::vector<std::string> intervals; ///< such as "0.067s (15.000 fps)"
};

/// A pixel format as `v4l2-ctl --list-formats-ext` shows it.
struct ListedFormat
{
    std::string code; ///< four characters, and -BE behind those of a big-endian format
    std::string description;
    std::set<std::string> flags;
    std::vector<ListedSize> sizes;
};

/// The driver's formats; with the option -w those that libv4l2 offers.
std::vector<ListedFormat> listFormats(std::string const& node, std::string const& option = "");

/// A control as `v4l2-ctl --list-ctrls-menus` shows it.
struct ListedControl
{
    std::string name; ///< the short form
    unsigned id = 0;
    std::string type;
    std::map<std::string, std::string> fields; ///< min, max, step, default, value, dims
    std::set<std::string> flags;
    std::map<unsigned, std::string> items;

    /// An array or a structure, which no plain control record describes.
    bool isCompound() const;
    long long number(std::string const& field) const;
};

std::vector<ListedControl> listControls(std::string const& node);

/// The value of one control as v4l2-ctl prints it.
std::string readControl(std::string const& node, std::string const& shortName);

/// The values of all controls, by id.
std::map<unsigned, std::string> readControls(std::string const& node);

/// A control's name as v4l2-ctl writes it.
std::string shortName(std::string const& name);

/// Remembers the numbers of all controls of a node and brings them back.
class ControlKeeper
{
public:
    explicit ControlKeeper(std::string node);
    ~ControlKeeper();
    ControlKeeper(ControlKeeper const&) = delete;
    ControlKeeper& operator=(ControlKeeper const&) = delete;

private:
    std::string m_node;
    std::string m_settings;
};

} // namespace KernelTest
