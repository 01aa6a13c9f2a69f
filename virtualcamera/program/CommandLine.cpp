// SPDX-License-Identifier: MIT
#include "CommandLine.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <iterator>
#include <memory>

namespace VirtualCamera
{

namespace
{

constexpr char usage[] = "usage: with-virtual-camera [OPTION]... [--] PROGRAM [ARGUMENT]...";

/// CLI11's own knows nothing of what follows the options.
class HelpFormat : public CLI::Formatter
{
public:
    std::string make_usage(CLI::App const*, std::string) const override
    {
        return std::string(usage) + "\n";
    }
};

using Words = std::vector<std::string>;

bool isOption(std::string const& word)
{
    return word.size() > 1 && word.front() == '-';
}

/// Whether the word after an option belongs to it.
bool takesNextWord(CLI::App const& app, std::string const& option)
{
    if (option.find('=') != std::string::npos) {
        return false;
    }
    CLI::Option const* const known = app.get_option_no_throw(option);
    if (known == nullptr) {
        throw UsageError("there is no option " + option);
    }
    return known->get_items_expected_max() > 0;
}

/// Takes the options off the words: they end at "--", or before the first word that is neither an
/// option nor the value of one. The program's own options must not be taken for the wrapper's, nor
/// a mistyped one for the program.
Words takeOptions(CLI::App const& app, Words& words)
{
    auto word = words.begin();
    while (word != words.end() && *word != "--" && isOption(*word)) {
        bool const valueFollows = takesNextWord(app, *word);
        ++word;
        if (valueFollows && word != words.end()) {
            ++word;
        }
    }
    Words options(std::make_move_iterator(words.begin()), std::make_move_iterator(word));
    bool const marked = word != words.end() && *word == "--";
    words.erase(words.begin(), marked ? word + 1 : word);
    return options;
}

} // namespace

UsageError::UsageError(std::string const& complaint)
    : std::runtime_error(complaint + "\n" + usage + "\n(see with-virtual-camera --help)")
{
}

std::optional<CommandLine> parseCommandLine(int count, char const* const* arguments)
{
    CommandLine line;
    CLI::App app{"Runs PROGRAM on a machine with virtual cameras: by default an ordinary webcam "
                 "(video0) and one of the vendor's cameras (video2).",
                 "with-virtual-camera"};
    app.formatter(std::make_shared<HelpFormat>());
    app.set_version_flag("--version", "with-virtual-camera " VIRTUALCAMERA_VERSION,
                         "Prints the version and ends");
    app.add_option("--model", line.models, "Adds a camera of this model; may be repeated")
        ->take_all()
        ->allow_extra_args(false);
    app.add_option("--config", line.configuration, "Adds the cameras of a JSON file");
    app.add_flag("--list-models", line.modelsListed, "Lists the models and ends");
    app.add_option("--plug-after", line.plugAfter,
                   "Plugs the last camera in only after so many milliseconds");
    app.add_option("--unplug-after", line.unplugAfter,
                   "Unplugs the last camera after so many milliseconds");
    line.command.assign(arguments + 1, arguments + count);
    Words options = takeOptions(app, line.command);
    // It takes them from the end.
    std::reverse(options.begin(), options.end());
    try {
        app.parse(std::move(options));
    } catch (CLI::Success const& answered) {
        app.exit(answered);
        return std::nullopt;
    } catch (CLI::ParseError const& failure) {
        throw UsageError(failure.what());
    }
    if (line.command.empty() && !line.modelsListed) {
        throw UsageError("no program given");
    }
    return line;
}

} // namespace VirtualCamera
