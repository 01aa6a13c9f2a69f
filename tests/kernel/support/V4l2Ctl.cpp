// SPDX-License-Identifier: MIT
#include "V4l2Ctl.h"

#include "Shell.h"

#include <cctype>
#include <iostream>
#include <regex>
#include <stdexcept>
#include <utility>

namespace KernelTest
{

namespace
{

std::vector<std::string> splitAt(std::string const& text, std::string const& separator)
{
    std::vector<std::string> parts;
    std::size_t begin = 0;
    for (std::size_t end; (end = text.find(separator, begin)) != std::string::npos;
         begin = end + separator.size()) {
        parts.push_back(text.substr(begin, end - begin));
    }
    parts.push_back(text.substr(begin));
    return parts;
}

ListedFormat parseFormat(std::smatch const& match)
{
    std::vector<std::string> const remarks = splitAt(match[2], ", ");
    ListedFormat format;
    format.code = match[1];
    format.description = remarks.front();
    format.flags.insert(remarks.begin() + 1, remarks.end());
    return format;
}

ListedControl parseControl(std::smatch const& match)
{
    static std::regex const field("([a-z]+)=('[^']*'|\\S+)");
    ListedControl control;
    control.name = match[1];
    control.id = static_cast<unsigned>(std::stoul(match[2], nullptr, 16));
    control.type = match[3];
    std::string rest = match[4];
    std::size_t const flags = rest.find("flags=");
    if (flags != std::string::npos) {
        for (std::string const& flag : splitAt(rest.substr(flags + 6), ", ")) {
            control.flags.insert(flag);
        }
        rest.resize(flags);
    }
    for (std::sregex_iterator one(rest.begin(), rest.end(), field), end; one != end; ++one) {
        control.fields[(*one)[1]] = (*one)[2];
    }
    return control;
}

std::vector<ListedControl> parseControls(std::string const& text)
{
    static std::regex const controlLine("\\s*(\\w+) 0x([0-9a-f]{8}) \\((\\w+)\\)\\s*: (.*)");
    static std::regex const itemLine("\\t+(\\d+): (.*)");
    std::vector<ListedControl> controls;
    std::smatch match;
    for (std::string const& line : splitLines(text)) {
        if (std::regex_match(line, match, itemLine)) {
            controls.back().items[static_cast<unsigned>(std::stoul(match[1]))] = match[2];
        } else if (std::regex_match(line, match, controlLine)) {
            controls.push_back(parseControl(match));
        }
    }
    return controls;
}

} // namespace

std::string v4l2Ctl(std::string const& node, std::string const& arguments)
{
    std::string const line = "v4l2-ctl -d " + node + " " + arguments;
    CommandResult const result = runShell(line);
    if (result.status != 0) {
        throw std::runtime_error(line + " failed: " + result.output);
    }
    return result.output;
}

std::vector<ListedFormat> listFormats(std::string const& node, std::string const& option)
{
    static std::regex const formatLine("\\t\\[\\d+\\]: '(.*)' \\((.*)\\)");
    static std::regex const sizeLine("\\t\\tSize: Discrete (\\d+)x(\\d+)");
    static std::string const interval = "\t\t\tInterval: Discrete ";
    std::vector<ListedFormat> formats;
    std::smatch match;
    for (std::string const& line : splitLines(v4l2Ctl(node, option + " --list-formats-ext"))) {
        if (line.compare(0, interval.size(), interval) == 0) {
            formats.back().sizes.back().intervals.push_back(line.substr(interval.size()));
        } else if (std::regex_match(line, match, sizeLine)) {
            formats.back().sizes.push_back({static_cast<unsigned>(std::stoul(match[1])),
                                            static_cast<unsigned>(std::stoul(match[2])),
                                            {}});
        } else if (std::regex_match(line, match, formatLine)) {
            formats.push_back(parseFormat(match));
        }
    }
    return formats;
}

bool ListedControl::isCompound() const
{
    return fields.count("dims") != 0 || type == "area";
}

long long ListedControl::number(std::string const& field) const
{
    return std::stoll(fields.at(field), nullptr, 0);
}

std::vector<ListedControl> listControls(std::string const& node)
{
    return parseControls(v4l2Ctl(node, "--list-ctrls-menus"));
}

std::string readControl(std::string const& node, std::string const& shortName)
{
    std::string text = v4l2Ctl(node, "--get-ctrl=" + shortName);
    text = text.substr(text.find(": ") + 2);
    return text.substr(0, text.find('\n'));
}

std::map<unsigned, std::string> readControls(std::string const& node)
{
    std::map<unsigned, std::string> values;
    for (ListedControl const& control : parseControls(v4l2Ctl(node, "--list-ctrls"))) {
        if (control.fields.count("value") != 0) {
            values[control.id] = control.fields.at("value");
        }
    }
    return values;
}

std::string shortName(std::string const& name)
{
    std::string result;
    for (char const character : name) {
        auto const byte = static_cast<unsigned char>(character);
        if (std::isalnum(byte) != 0) {
            result += static_cast<char>(std::tolower(byte));
        } else if (!result.empty() && result.back() != '_') {
            result += '_';
        }
    }
    while (!result.empty() && result.back() == '_') {
        result.pop_back();
    }
    return result;
}

ControlKeeper::ControlKeeper(std::string node) : m_node(std::move(node))
{
    static std::set<std::string> const kept = {"int", "bool", "menu", "intmenu", "bitmask"};
    for (ListedControl const& control : parseControls(v4l2Ctl(m_node, "--list-ctrls"))) {
        if (kept.count(control.type) != 0 && control.flags.count("read-only") == 0 &&
            control.flags.count("inactive") == 0) {
            m_settings +=
                (m_settings.empty() ? "" : ",") + control.name + "=" + control.fields.at("value");
        }
    }
}

ControlKeeper::~ControlKeeper()
{
    try {
        v4l2Ctl(m_node, "--set-ctrl=" + m_settings);
    } catch (std::exception const& error) {
        std::cerr << "the controls keep their new values: " << error.what() << '\n';
    }
}

} // namespace KernelTest
