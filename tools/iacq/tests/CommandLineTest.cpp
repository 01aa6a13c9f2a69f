// SPDX-License-Identifier: MIT
#include "CommandLine.h"

#include "Failure.h"

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>

#include <algorithm>

namespace
{

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

/// What CLI11 2.4 and newer demand of names, those of positionals included; older ones let
/// positionals have any.
bool isNameEverywhere(std::string const& name)
{
    auto const isControlOrSpace = [](char character) {
        return static_cast<unsigned char>(character) <= 0x20;
    };
    return !name.empty() && name.find_first_of("-!") != 0 &&
           name.find_first_of("=:{") == std::string::npos &&
           std::none_of(name.begin(), name.end(), isControlOrSpace);
}

TEST(CommandLineTest, HasNamesThatEveryVersionOfItsParserTakes)
{
    Iacq::CommandLine const commandLine;
    int positionals = 0;
    for (CLI::App const* const command :
         commandLine.app().get_subcommands([](CLI::App const*) { return true; })) {
        EXPECT_TRUE(isNameEverywhere(command->get_name())) << command->get_name();
        for (CLI::Option const* const option : command->get_options()) {
            std::string const name = option->get_name(true);
            bool const positional = option->get_positional();
            EXPECT_TRUE(!positional || isNameEverywhere(name))
                << command->get_name() << " " << name;
            positionals += positional ? 1 : 0;
        }
    }
    EXPECT_GE(positionals, 8);
}

struct Outcome
{
    std::string failure; ///< Empty when there was none; else the exit status and the message.
    std::string output;
};

Outcome outcomeOf(std::vector<char const*> arguments)
{
    arguments.insert(arguments.begin(), "iacq");
    Outcome outcome;
    testing::internal::CaptureStdout();
    try {
        Iacq::CommandLine().run(static_cast<int>(arguments.size()), arguments.data());
    } catch (Iacq::Failure const& failure) {
        outcome.failure = std::to_string(failure.status()) + ": " + failure.what();
    }
    outcome.output = testing::internal::GetCapturedStdout();
    return outcome;
}

TEST(CommandLineTest, NamesTheCommandThatItDoesNotKnow)
{
    for (std::vector<char const*> const& arguments :
         {std::vector<char const*>{"lst"}, {"lst", "0", "--json"}, {"help", "lst"}}) {
        EXPECT_EQ(
            outcomeOf(arguments).failure,
            "2: there is no command 'lst'; the commands are list show capture get set monitor "
            "reset help");
    }
    EXPECT_THAT(outcomeOf({}).failure, StartsWith("2: "));
    EXPECT_THAT(outcomeOf({"--bogus", "list"}).failure, HasSubstr("--bogus"));
    EXPECT_THAT(outcomeOf({"list", "more"}).failure, HasSubstr("more"));
}

TEST(CommandLineTest, TellsItsVersion)
{
    Outcome const outcome = outcomeOf({"--version"});
    EXPECT_EQ(outcome.failure, "");
    EXPECT_THAT(outcome.output, MatchesRegex("iacq [0-9]+\\.[0-9]+\\.[0-9]+\n"));
    EXPECT_THAT(outcomeOf({"list", "--version"}).failure, StartsWith("2: "));
}

TEST(CommandLineTest, HelpsByWordAndByOption)
{
    Outcome const outcome = outcomeOf({"help"});
    EXPECT_EQ(outcome.failure, "");
    EXPECT_THAT(outcome.output, HasSubstr("\nSubcommands:\n  list "));
    EXPECT_EQ(outcome.output, outcomeOf({"--help"}).output);
    for (char const* const command :
         {"list", "show", "capture", "get", "set", "monitor", "reset", "help"}) {
        Outcome const help = outcomeOf({"help", command});
        EXPECT_EQ(help.failure, "");
        EXPECT_THAT(help.output, HasSubstr(std::string("Usage: iacq ") + command));
        EXPECT_EQ(help.output, outcomeOf({command, "--help"}).output);
    }
}

TEST(CommandLineTest, SaysWhatIsAssigned)
{
    std::string const help = outcomeOf({"set", "--help"}).output;
    EXPECT_THAT(help, HasSubstr("Usage: iacq set [OPTIONS] CAMERA ASSIGNMENT...\n"));
    EXPECT_THAT(help, HasSubstr("NAME=VALUE"));
}

} // namespace
