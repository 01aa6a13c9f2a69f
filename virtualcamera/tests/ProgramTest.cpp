// SPDX-License-Identifier: MIT
#include "WrapperRun.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

TEST(ProgramTest, ShowsAnOrdinaryAndAVendorCameraByDefault)
{
    EXPECT_EQ(run(client + " card /dev/video0").output, "Virtual Webcam\n");
    EXPECT_EQ(run(client + " card /dev/video2").output, "Virtual Vendor Camera\n");
    EXPECT_EQ(run(client + " card /dev/video4").status, 1);
    EXPECT_EQ(run("cat /sys/class/video4linux/video2/../../idVendor").output, "7a76");
}

TEST(ProgramTest, ShowsTheChosenModelsInTheirOrder)
{
    std::string const models = "--model read --model all-controls ";
    EXPECT_EQ(run(models + client + " card /dev/video0").output, "Virtual Read Camera\n");
    EXPECT_EQ(run(models + "-- " + client + " card /dev/video2").output, "Virtual Control Panel\n");
}

TEST(ProgramTest, GivesCamerasTheCapabilitiesThatADriverTells)
{
    // As uvcvideo behind libv4l2 has them: of both nodes together, then of the node asked.
    EXPECT_EQ(run(client + " capabilities /dev/video0").output, "85a00001 05200001\n");
    EXPECT_EQ(run("--model platform " + client + " capabilities /dev/video0").output,
              "85200001 05200001\n");
}

TEST(ProgramTest, ListsItsModels)
{
    CommandResult const outcome = run("--list-models");
    EXPECT_EQ(outcome.status, 0);
    for (char const* model :
         {"webcam", "vendor", "serial", "all-controls", "user-pointers", "read", "platform"}) {
        EXPECT_NE(outcome.output.find(std::string("\n") + model), outcome.output.find(model));
    }
}

TEST(ProgramTest, PassesExitStatusAndSignalsOn)
{
    EXPECT_EQ(run("sh -c 'exit 7'").status, 7);
    EXPECT_EQ(run("sh -c 'kill -9 $$'").status, 128 + 9);
}

TEST(ProgramTest, EndsWithItsProgramWhenTerminated)
{
    EXPECT_EQ(run("sh -c 'trap \"exit 5\" TERM; kill -TERM $PPID; while :; do :; done'").status, 5);
}

TEST(ProgramTest, PassesArgumentsAndStandardInputOn)
{
    EXPECT_EQ(run("printf '%s|' --model 'a b' --list-models").output, "--model|a b|--list-models|");
    EXPECT_EQ(run("cat </dev/null").status, 0);
}

TEST(ProgramTest, ComplainsInOneLine)
{
    CommandResult const unknown = run("--model nonsense true");
    EXPECT_EQ(unknown.status, 1);
    EXPECT_EQ(unknown.output,
              "with-virtual-camera: there is no model \"nonsense\" (see --list-models)\n");
    CommandResult const missing = run("/no/such/program");
    EXPECT_EQ(missing.status, 127);
    EXPECT_EQ(missing.output, "with-virtual-camera: /no/such/program: No such file or directory\n");
    EXPECT_EQ(run("").status, 1);
    EXPECT_EQ(run("--config /no/such/file true").output,
              "with-virtual-camera: /no/such/file: cannot be read\n");
}

TEST(ProgramTest, TakesAMistypedOptionForNoProgram)
{
    std::string const usage =
        "\nusage: with-virtual-camera [OPTION]... [--] PROGRAM [ARGUMENT]...\n"
        "(see with-virtual-camera --help)\n";
    for (std::string const option : {"--modle", "-m", "--models", "--mode"}) {
        CommandResult const outcome = run(option + " webcam true");
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.output, "with-virtual-camera: there is no option " + option + usage);
    }
    CommandResult const withValue = run("--modle=webcam true");
    EXPECT_EQ(withValue.status, 1);
    EXPECT_NE(withValue.output.find("--modle"), std::string::npos);
    EXPECT_EQ(run("--model webcam").output, "with-virtual-camera: no program given" + usage);
}

TEST(ProgramTest, TellsOfAnOptionWithoutItsValue)
{
    for (std::string const words : {"--plug-after soon true", "--plug-after 1.5 true", "--model"}) {
        CommandResult const outcome = run(words);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_NE(outcome.output.find(words.substr(0, words.find(' '))), std::string::npos);
        EXPECT_NE(outcome.output.find("\nusage: "), std::string::npos);
    }
}

TEST(ProgramTest, EndsItsOptionsAtTwoDashes)
{
    EXPECT_EQ(run("-- --modle").output,
              "with-virtual-camera: --modle: No such file or directory\n");
    EXPECT_EQ(run("--model read -- printf '%s|' -- --model x").output, "--|--model|x|");
    EXPECT_EQ(run("printf '%s|' a -- b").output, "a|--|b|");
    EXPECT_EQ(run("--model=read " + client + " card /dev/video0").output, "Virtual Read Camera\n");
}

TEST(ProgramTest, TellsItsVersionAndItsUsage)
{
    CommandResult const version = run("--version");
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.output, "with-virtual-camera " VIRTUALCAMERA_VERSION "\n");
    for (char const* option : {"--help", "-h"}) {
        CommandResult const help = run(option);
        EXPECT_EQ(help.status, 0);
        EXPECT_NE(help.output.find("[--] PROGRAM [ARGUMENT]..."), std::string::npos);
        EXPECT_NE(help.output.find("--version"), std::string::npos);
    }
}

TEST(ProgramTest, TakesCamerasFromAFile)
{
    Configuration const file(R"({"cameras": [{"node": "/dev/video9", "name": "Mine",
        "usb": {"port": "2-3", "vendorId": "0abc", "speed": "12"}}]})");
    EXPECT_EQ(run(file.option() + client + " card /dev/video9").output, "Mine\n");
    EXPECT_EQ(run(file.option() + "cat /sys/bus/usb/devices/2-3/idVendor").output, "0abc");
}

TEST(ProgramTest, GivesCamerasWithoutANodeTheNextFreeOne)
{
    Configuration const file(R"({"cameras": [{"name": "A"}, {"name": "B"}]})");
    EXPECT_EQ(run(file.option() + client + " card /dev/video0").output, "A\n");
    EXPECT_EQ(run(file.option() + client + " card /dev/video1").output, "B\n");
}

TEST(ProgramTest, PutsModelsWhereTheFilesCamerasAreNot)
{
    Configuration const file(R"({"cameras": [{"node": "/dev/video3", "name": "A",
                                              "usb": {"port": "1-3"}}]})");
    std::string const cameras = file.option() + "--model read ";
    EXPECT_EQ(run(cameras + client + " card /dev/video3").output, "A\n");
    EXPECT_EQ(run(cameras + client + " card /dev/video6").output, "Virtual Read Camera\n");
}

void expectRefused(Configuration const& file, std::string const& reason)
{
    CommandResult const outcome = run(file.option() + "true");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "with-virtual-camera: " + reason + "\n");
}

TEST(ProgramTest, RefusesNodesAndPortsThatNoMachineHas)
{
    for (std::string const node : {"", "video0", "/dev/", "/dev/v4l/video0", "/dev/.."}) {
        Configuration const file("{\"cameras\": [{\"node\": \"" + node + "\"}]}");
        expectRefused(file, "configuration.cameras[0].node: a node is written as \"/dev/video0\", "
                            "unlike \"" +
                                node + "\"");
    }
    for (std::string const port :
         {"", "1", "1-", "0-1", "-1-1", "1-0", "1-1.", "1-1..2", "1-1/2", "1000-1"}) {
        Configuration const file("{\"cameras\": [{\"usb\": {\"port\": \"" + port + "\"}}]}");
        expectRefused(file, "configuration.cameras[0].usb.port: a port is written as \"1-2.3\", "
                            "unlike \"" +
                                port + "\"");
    }
}

TEST(ProgramTest, RefusesAUsbRevisionThatIsNone)
{
    for (std::string const text : {"", "2", "2.", "-2.00", "2.-1", "2.00x", "200.00", " 2.00"}) {
        Configuration const file(R"({"cameras": [{"usb": {"port": "1-1", "usbRevision": ")" + text +
                                 "\"}}]}");
        EXPECT_EQ(run(file.option() + "true").output,
                  "with-virtual-camera: configuration.cameras[0].usb.usbRevision: a USB revision "
                  "is written as \"2.00\", unlike \"" +
                      text + "\"\n");
    }
}

TEST(ProgramTest, UnplugsACameraWhileItStreams)
{
    CommandResult const outcome =
        run("--model webcam --unplug-after 1500 " + client + " stream /dev/video0 100000");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output.rfind("streaming\nframe 0\n", 0), 0u);
    EXPECT_NE(outcome.output.find("\nENODEV\n"), std::string::npos);
}

TEST(ProgramTest, SendsHotPlugEventsWhileTheProgramRuns)
{
    CommandResult const outcome =
        run("--model platform --plug-after 1500 --unplug-after 1600 " + client + " watch 2");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "add /dev/video0\nremove /dev/video0\n");
}

TEST(ProgramTest, LetsAPluggedCameraBeOpened)
{
    EXPECT_EQ(run("--model webcam --plug-after 0 sh -c 'while ! " + client +
                  " card /dev/video0; do :; done'")
                  .output,
              "Virtual Webcam\n");
}

TEST(ProgramTest, AnnouncesASerialPortInTheKernelLog)
{
    CommandResult const outcome = run("--model webcam --model serial dmesg");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_NE(outcome.output.find(" cdc_acm 1-2:1.5: ttyACM"), std::string::npos);
    EXPECT_EQ(run("--model webcam dmesg").output.find("cdc_acm"), std::string::npos);
}

TEST(ProgramTest, AnswersOnTheSerialPort)
{
    CommandResult const outcome =
        run("--model serial sh -c '" + client +
            " exchange /dev/$(dmesg | sed -n \"s/.*: \\(ttyACM[0-9]\\): .*/\\1/p\")'");
    EXPECT_EQ(outcome.output, "a1850006000102000200\n");
    EXPECT_EQ(outcome.status, 0);
}

} // namespace
