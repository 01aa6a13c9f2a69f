// SPDX-License-Identifier: MIT
#include "serial/TtyFinder.h"

#include <gtest/gtest.h>

namespace
{

using ImageAcquisition::findTty;
using ImageAcquisition::ttyPattern;

constexpr char const* bus = "usb-0000:00:14.0-2.3";

std::string portIn(std::string const& log, char const* busInfo = bus)
{
    return findTty(QString::fromStdString(log), busInfo).port.toStdString();
}

TEST(TtyFinderTest, MakesThePatternOfTheLastPartOfTheBusText)
{
    EXPECT_EQ(ttyPattern(bus).toStdString(),
              "cdc_acm\\s(?<bus>[\\d\\.:]+-2\\.3):1\\.5:\\s(?<port>ttyACM\\d)");
    EXPECT_EQ(ttyPattern("usb-xhci-hcd.0.auto-1.4.2").toStdString(),
              "cdc_acm\\s(?<bus>[\\d\\.:]+-1\\.4\\.2):1\\.5:\\s(?<port>ttyACM\\d)");
}

TEST(TtyFinderTest, TakesABusTextWithoutDashWholeAndANullOneAsEmpty)
{
    std::string const rest = "):1\\.5:\\s(?<port>ttyACM\\d)";
    EXPECT_EQ("cdc_acm\\s(?<bus>[\\d\\.:]+-7" + rest, ttyPattern("7").toStdString());
    EXPECT_EQ("cdc_acm\\s(?<bus>[\\d\\.:]+-" + rest, ttyPattern("").toStdString());
    EXPECT_EQ("cdc_acm\\s(?<bus>[\\d\\.:]+-" + rest, ttyPattern("usb-").toStdString());
    EXPECT_EQ("cdc_acm\\s(?<bus>[\\d\\.:]+-" + rest, ttyPattern(nullptr).toStdString());
}

TEST(TtyFinderTest, FindsTheTtyAndTheUsbPath)
{
    auto const found = findTty("[    5.0] cdc_acm 1-2.3:1.5: ttyACM0: USB ACM device\n", bus);
    EXPECT_EQ(found.bus.toStdString(), "1-2.3");
    EXPECT_EQ(found.port.toStdString(), "ttyACM0");
}

TEST(TtyFinderTest, GivesTheLastOfSeveralAnnouncements)
{
    EXPECT_EQ(portIn("[ 5.0] cdc_acm 1-2.3:1.5: ttyACM0: USB ACM device\n"
                     "[ 7.0] usb 1-2.3: USB disconnect, device number 4\n"
                     "[ 9.0] cdc_acm 1-2.3:1.5: ttyACM1: USB ACM device\n"
                     "[ 9.1] cdc_acm 1-4:1.5: ttyACM2: USB ACM device\n"),
              "ttyACM1");
}

TEST(TtyFinderTest, PassesOverOtherInterfacesAndPorts)
{
    EXPECT_EQ(portIn("cdc_acm 1-2.3:1.4: ttyACM0: USB ACM device"), "");
    EXPECT_EQ(portIn("cdc_acm 1-2.3:2.5: ttyACM0: USB ACM device"), "");
    EXPECT_EQ(portIn("cdc_acm 1-2.4:1.5: ttyACM0: USB ACM device"), "");
    EXPECT_EQ(portIn("cdc_acm 1-2.3.1:1.5: ttyACM0: USB ACM device"), "");
    EXPECT_EQ(portIn("cdc_acm 1-1.2.3:1.5: ttyACM0: USB ACM device"), "");
    EXPECT_EQ(portIn("cdc_acm 1-12.3:1.5: ttyACM0: USB ACM device"), "");
    EXPECT_EQ(portIn("cdc_ether 1-2.3:1.5: ttyACM0: USB ACM device"), "");
}

TEST(TtyFinderTest, TakesADotOfThePortPathForADotOnly)
{
    EXPECT_EQ(portIn("cdc_acm 1-2x3:1.5: ttyACM0: USB ACM device"), "");
    EXPECT_EQ(portIn("cdc_acm 1-213:1.5: ttyACM0: USB ACM device"), "");
}

// The bus text does not say which controller it is, so both look alike.
TEST(TtyFinderTest, TakesTheSamePortPathOnAnotherController)
{
    EXPECT_EQ(portIn("cdc_acm 7-2.3:1.5: ttyACM4: USB ACM device"), "ttyACM4");
}

TEST(TtyFinderTest, TakesOneDigitOfTheNumberOnly)
{
    EXPECT_EQ(portIn("cdc_acm 1-2.3:1.5: ttyACM12: USB ACM device"), "ttyACM1");
    EXPECT_EQ(portIn("cdc_acm 1-2.3:1.5: ttyACM: USB ACM device"), "");
}

TEST(TtyFinderTest, IgnoresTheCaseOfLetters)
{
    EXPECT_EQ(portIn("CDC_ACM 1-2.3:1.5: TTYACM0: USB ACM DEVICE"), "TTYACM0");
}

TEST(TtyFinderTest, FindsNothingInAnEmptyLog)
{
    auto const found = findTty(QString(), bus);
    EXPECT_TRUE(found.bus.isEmpty());
    EXPECT_TRUE(found.port.isEmpty());
}

TEST(TtyFinderTest, FindsNothingForABusTextThatIsNoPattern)
{
    EXPECT_EQ(portIn("cdc_acm 1-2.3:1.5: ttyACM0: USB ACM device", "usb-(["), "");
}

TEST(TtyFinderTest, FindsALineBehindMegabytesOfLog)
{
    std::string log;
    while (log.size() < 8 * 1024 * 1024) {
        log += "[ 1.0] cdc_acm 1-2.4:1.5: ttyACM0: USB ACM device and 1.2.3:4.5-6.7 of all sorts\n";
    }
    EXPECT_EQ(portIn(log), "");
    EXPECT_EQ(portIn(log + "[ 2.0] cdc_acm 1-2.3:1.5: ttyACM3: USB ACM device\n"), "ttyACM3");
}

} // namespace
