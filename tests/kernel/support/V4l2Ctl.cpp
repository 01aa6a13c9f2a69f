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

std::vector<std::string> splitAt(const std::string& text, const std::string& separator)
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

ListedFormat parseFormat(const std::smatch& match)
{
    std::vector<std::string> const remarks = splitAt(match[2], ", ");
    ListedFormat format;
    format.code = match[1];
    format.description = remarks.front();
    format.flags.insert(remarks.begin() + 1, remarks.end());
    return format;
}

ListedControl parseControl(const std::smatch& match)
{
    static const std::regex field("([a-z]+)=('[^']*'|\\S+)");
    ListedControl control;
    control.name = match[1];
    control.id = static_cast<unsigned>(std::stoul(match[2], nullptr, 16));
    control.type = match[3];
    std::string rest = match[4];
    const std::size_t flags = rest.find("flags=");
    if (flags != std::string::npos) {
        for (const std::string& flag : splitAt(rest.substr(flags + 6), ", ")) {
            control.flags.insert(flag);
        }
        rest.resize(flags);
    }
    for (std::sregex_iterator one(rest.begin(), rest.end(), field), end; one != end; ++one) {
        control.fields[(*one)[1]] = (*one)[2];
    }
    return control;
}

std::vector<ListedControl> parseControls(const std::string& text)
{
    static const std::regex controlLine("\\s*(\\w+) 0x([0-9a-f]{8}) \\((\\w+)\\)\\s*: (.*)");
    static const std::regex itemLine("\\t+(\\d+): (.*)");
    std::vector<ListedControl> controls;
    std::smatch match;
    for (const std::string& line : splitLines(text)) {
        if (std::regex_match(line, match, itemLine)) {
            controls.back().items[static_cast<unsigned>(std::stoul(match[1]))] = match[2];
        } else if (std::regex_match(line, match, controlLine)) {
            controls.push_back(parseControl(match));
        }
    }
    return controls;
}

} // namespace

std::string v4l2Ctl(const std::string& node, const std::string& arguments)
{
    const std::string line = "v4l2-ctl -d " + node + " " + arguments;
    const CommandResult result = runShell(line);
    if (result.status != 0) {
        throw std::runtime_error(line + " failed: " + result.output);
    }
    return result.output;
}

std::vector<ListedFormat> listFormats(const std::string& node, const std::string& option)
{
    static const std::regex formatLine("\\t\\[\\d+\\]: '(.*)' \\((.*)\\)");
    static const std::regex sizeLine("\\t\\tSize: Discrete (\\d+)x(\\d+)");
    static const std::string interval = "\t\t\tInterval: Discrete ";
    std::vector<ListedFormat> formats;
    std::smatch match;
    for (const std::string& line : splitLines(v4l2Ctl(node, option + " --list-formats-ext"))) {
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

long long ListedControl::number(const std::string& field) const
{
    return std::stoll(fields.at(field), nullptr, 0);
}

std::vector<ListedControl> listControls(const std::string& node)
{
    return parseControls(v4l2Ctl(node, "--list-ctrls-menus"));
}

std::string readControl(const std::string& node, const std::string& shortName)
{
    std::string text = v4l2Ctl(node, "--get-ctrl=" + shortName);
    text = text.substr(text.find(": ") + 2);
    return text.substr(0, text.find('\n'));
}

std::map<unsigned, std::string> readControls(const std::string& node)
{
    std::map<unsigned, std::string> values;
    for (const ListedControl& control : parseControls(v4l2Ctl(node, "--list-ctrls"))) {
        if (control.fields.count("value") != 0) {
            values[control.id] = control.fields.at("value");
        }
    }
    return values;
}

std::string shortName(const std::string& name)
{
    std::string result;
    for (const char character : name) {
        const auto byte = static_cast<unsigned char>(character);
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

ControlKeeper::ControlKeeper(std::string node) : _node(std::move(node))
{
    static const std::set<std::string> kept = {"int", "bool", "menu", "intmenu", "bitmask"};
    for (const ListedControl& control : parseControls(v4l2Ctl(_node, "--list-ctrls"))) {
        if (kept.count(control.type) != 0 && control.flags.count("read-only") == 0 &&
            control.flags.count("inactive") == 0) {
            _settings +=
                (_settings.empty() ? "" : ",") + control.name + "=" + control.fields.at("value");
        }
    }
}

ControlKeeper::~ControlKeeper()
{
    try {
        v4l2Ctl(_node, "--set-ctrl=" + _settings);
    } catch (const std::exception& error) {
        std::cerr << "the controls keep their new values: " << error.what() << '\n';
    }
}

} // namespace KernelTest
