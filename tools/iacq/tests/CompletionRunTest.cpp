// SPDX-License-Identifier: MIT
#include "ProgramRun.h"

#include <gmock/gmock.h>

#include <sstream>

namespace
{

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

Words const webcam = {"--model", "webcam"};
Words const allControls = {"--model", "all-controls"};

/// Runs a script of bash in an empty folder, in which it has to leave nothing behind: the texts of
/// cameras below would make files if one of them were carried out.
ProgramRun runInEmptyFolder(Words const& wrapper, std::string const& script, Words const& arguments)
{
    ScratchFolder const folder;
    Words command = wrapper;
    Words const bash = {"bash", "-c", "cd \"$1\" && shift && " + script, "bash", folder.path("")};
    command.insert(command.end(), bash.begin(), bash.end());
    command.insert(command.end(), arguments.begin(), arguments.end());
    ProgramRun run = runProgram(command);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "");
    EXPECT_THAT(folder.names(), IsEmpty());
    return run;
}

/// What bash offers for the last of the words, as the completion wants it put on the command line.
/// The words are those that bash makes of a line: it sets a "=" apart.
Words completionsOf(Words const& words, Words const& cameras = webcam)
{
    Words wrapper = {WITH_VIRTUAL_CAMERA};
    wrapper.insert(wrapper.end(), cameras.begin(), cameras.end());
    wrapper.emplace_back("--");
    Words arguments = {COMPLETION, IACQ_PROGRAM};
    arguments.insert(arguments.end(), words.begin(), words.end());
    ProgramRun const run =
        runInEmptyFolder(wrapper,
                         ". \"$1\"; shift; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _iacq; "
                         "[ ${#COMPREPLY[@]} -eq 0 ] || printf '%s\\n' \"${COMPREPLY[@]}\"",
                         arguments);
    std::istringstream lines(run.output);
    Words result;
    for (std::string line; std::getline(lines, line);) {
        result.push_back(line);
    }
    return result;
}

/// What a shell makes of a piece of a command line; a line for each word.
std::string wordsOf(std::string const& piece)
{
    return runInEmptyFolder({}, R"(eval "set -- $1"; printf '%s\n' "$@")", {piece}).output;
}

TEST(CompletionRunTest, OffersCommandsAndWhatStandsInTheirPlace)
{
    EXPECT_THAT(completionsOf({""}), ElementsAre("list", "show", "capture", "get", "set", "monitor",
                                                 "reset", "help", "--help", "--version"));
    EXPECT_THAT(completionsOf({"cap"}), ElementsAre("capture"));
    EXPECT_THAT(completionsOf({"--v"}), ElementsAre("--version"));
    EXPECT_THAT(completionsOf({"help", "s"}), ElementsAre("show", "set"));
}

TEST(CompletionRunTest, OffersCamerasByIndexAndNode)
{
    Words const two = {"--model", "webcam", "--model", "vendor"};
    for (std::string const command : {"show", "get", "set", "capture", "reset"}) {
        EXPECT_THAT(completionsOf({command, ""}, two),
                    IsSupersetOf({"0", "1", "video0", "/dev/video2"}));
    }
    EXPECT_THAT(completionsOf({"show", "/dev/video2"}, two), ElementsAre("/dev/video2"));
    EXPECT_THAT(completionsOf({"capture", "--output", "a.png", ""}, two), Contains("1"));
    EXPECT_THAT(completionsOf({"list", ""}, two), IsEmpty());
    EXPECT_THAT(completionsOf({"show", "0", ""}, two), IsEmpty());
}

TEST(CompletionRunTest, OffersOptionsAndTheirValues)
{
    EXPECT_THAT(completionsOf({"capture", "0", "--f"}), ElementsAre("--format", "--fps"));
    EXPECT_THAT(completionsOf({"capture", "0", "--output-format", "p"}), ElementsAre("png", "ppm"));
    EXPECT_THAT(completionsOf({"capture", "0", "--output-format", "=", "p"}),
                ElementsAre("png", "ppm"));
    EXPECT_THAT(completionsOf({"capture", "0", "--count", ""}), IsEmpty());
}

TEST(CompletionRunTest, OffersWhatTheCameraCanDeliver)
{
    EXPECT_THAT(completionsOf({"capture", "--format", ""}), IsSupersetOf({"YUYV", "MJPG"}));
    EXPECT_THAT(completionsOf({"capture", "video0", "--format", "M"}), ElementsAre("MJPG"));
    EXPECT_THAT(completionsOf({"capture", "0", "--format", "="}), Contains("YUYV"));
    ScratchFolder const folder;
    Words const camera = {"--config", folder.write("camera.json", R"({"cameras": [{
        "node": "/dev/video0", "usb": {"port": "1-1", "serial": "S-1"}, "formats": [
        {"pixelFormat": "YUYV", "sizes": [
            {"width": 640, "height": 480, "intervals": ["1/30", "1001/30000"]},
            {"width": 64, "height": 48, "intervals": ["1/30", "1/10"]}]},
        {"pixelFormat": "GREY", "sizes": [{"width": 32, "height": 24, "intervals": ["2/15"]}]}]}]})")};
    EXPECT_THAT(completionsOf({"capture", "0", "--size", ""}, camera),
                ElementsAre("640x480", "64x48", "32x24"));
    EXPECT_THAT(completionsOf({"capture", "S-1", "--format", "GREY", "--size", ""}, camera),
                ElementsAre("32x24"));
    EXPECT_THAT(completionsOf({"capture", "0", "--interval", ""}, camera),
                ElementsAre("1/30", "1001/30000", "1/10", "2/15"));
    EXPECT_THAT(completionsOf({"capture", "0", "--fps", ""}, camera),
                ElementsAre("30", "29.97", "10", "7.5"));
}

TEST(CompletionRunTest, OffersControlsByTheirShortForm)
{
    EXPECT_THAT(completionsOf({"get", "0", ""}, allControls),
                IsSupersetOf({"integer", "string", "button", "read_only_integer"}));
    EXPECT_THAT(completionsOf({"get", "video0", "read"}, allControls),
                ElementsAre("read_only_integer"));
    EXPECT_THAT(completionsOf({"get", "0", "--json", "menu"}, allControls), ElementsAre("menu"));
    EXPECT_THAT(completionsOf({"set", "0", "bri"}), ElementsAre("brightness="));
    EXPECT_THAT(completionsOf({"set", "0", "menu", "=", "Third", "int"}, allControls),
                Contains("integer="));
    EXPECT_THAT(completionsOf({"set", "0", ""}, allControls),
                AllOf(Contains("button"), Contains("integer="), Not(Contains("button=")),
                      Not(Contains("read_only_integer="))));
    EXPECT_THAT(completionsOf({"get", "nonsense", ""}, allControls), IsEmpty());
}

TEST(CompletionRunTest, EscapesFullNames)
{
    Words const escaped = completionsOf({"get", "0", "Exposure"}, allControls);
    ASSERT_EQ(escaped.size(), 1u);
    EXPECT_EQ(wordsOf(escaped[0]), "Exposure Time, Absolute\n");
    EXPECT_EQ(completionsOf({"get", "0", "Exposure\\ Ti"}, allControls), escaped);
    EXPECT_THAT(completionsOf({"get", "0", "\"Exposure T"}, allControls),
                ElementsAre("Exposure Time, Absolute"));
    EXPECT_THAT(completionsOf({"set", "0", "Exposure\\ Ti"}, allControls),
                ElementsAre(escaped[0] + "="));
}

TEST(CompletionRunTest, OffersValuesOfSwitchesAndMenus)
{
    EXPECT_THAT(completionsOf({"set", "0", "boolean", "="}, allControls), ElementsAre("on", "off"));
    EXPECT_THAT(completionsOf({"set", "0", "boolean", "=", "of"}, allControls), ElementsAre("off"));
    EXPECT_THAT(completionsOf({"set", "0", "menu", "=", ""}, allControls),
                ElementsAre("First", "Third", "Fourth"));
    EXPECT_THAT(completionsOf({"set", "0", "integer", "="}, allControls), IsEmpty());
    Words const manual = completionsOf({"set", "0", "Auto\\ Exposure", "=", "Man"}, allControls);
    ASSERT_EQ(manual.size(), 1u);
    EXPECT_EQ(wordsOf(manual[0]), "Manual Mode\n");
}

TEST(CompletionRunTest, LetsNoTextOfACameraBeCarriedOut)
{
    ScratchFolder const folder;
    Words const camera = {"--config", folder.write("camera.json", R"json({"cameras": [{
        "node": "/dev/video0", "name": "$(touch a)", "usb": {"port": "1-1", "serial": "$(touch b)"},
        "formats": [{"pixelFormat": "`$;\"", "description": "$(touch c)",
                     "sizes": [{"width": 64, "height": 48}]}],
        "controls": [
            {"type": "integer", "id": "0x00980900", "name": "Evil $(touch d)"},
            {"type": "integer", "id": "0x00980901", "name": "Evil `touch e`"},
            {"type": "integer", "id": "0x00980902", "name": "Evil'; touch f #"},
            {"type": "menu", "id": "0x00980903", "name": "Menu", "maximum": 1, "items": [
                {"index": 0, "label": "$(touch g)"}, {"index": 1, "label": "*"}]}]}]})json")};
    std::string names;
    for (std::string const& name : completionsOf({"get", "0", "Evil"}, camera)) {
        names += wordsOf(name);
    }
    EXPECT_EQ(names, "Evil $(touch d)\nEvil `touch e`\nEvil'; touch f #\n");
    std::string labels;
    for (std::string const& label : completionsOf({"set", "0", "menu", "="}, camera)) {
        labels += wordsOf(label);
    }
    EXPECT_EQ(labels, "$(touch g)\n*\n");
    Words const formats = completionsOf({"capture", "0", "--format", ""}, camera);
    ASSERT_EQ(formats.size(), 1u);
    EXPECT_EQ(wordsOf(formats[0]), "`$;\"\n");
    EXPECT_THAT(completionsOf({"get", "0", "\"Evil"}, camera), IsEmpty());
    EXPECT_THAT(completionsOf({"get", "$(touch h)", ""}, camera), IsEmpty());
    EXPECT_THAT(completionsOf({"get", "0", "$(touch i)"}, camera), IsEmpty());
}

TEST(CompletionRunTest, OpensNoneOfTheVendorsCameras)
{
    Words const vendors = {"--model", "vendor"};
    EXPECT_THAT(completionsOf({"get", "0", ""}, vendors), IsEmpty());
    EXPECT_THAT(completionsOf({"capture", "0", "--format", ""}, vendors), IsEmpty());
}

} // namespace
