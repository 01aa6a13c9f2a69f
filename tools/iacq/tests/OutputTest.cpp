// SPDX-License-Identifier: MIT
#include "Output.h"

#include "Failure.h"
#include "FrameEncoder.h"

#include <gmock/gmock.h>

#include <vector>

namespace
{

struct Numbered
{
    char const* asked;
    int number;
    int count;
    char const* path;
};

void expectPaths(std::vector<Numbered> const& rows)
{
    for (Numbered const& row : rows) {
        EXPECT_EQ(Iacq::numberedPath(row.asked, row.number, row.count), row.path);
    }
}

TEST(OutputTest, PutsTheNumberWhereItBelongs)
{
    expectPaths({
        {"a.png", 1, 1, "a.png"},
        {"a.png", 3, 5, "a-0003.png"},
        {"d.ir/a", 3, 5, "d.ir/a-0003"},
        {"a-%d.png", 12, 20, "a-12.png"},
        {"a-%04d.png", 1, 1, "a-0001.png"},
        {"-", 2, 3, "-"},
        {"/dev/null", 2, 3, "/dev/null"},
        {"/tmp", 2, 3, "/tmp-0002"},
    });
}

TEST(OutputTest, TakesAPercentSignThatIsNoPatternAsItStands)
{
    expectPaths({
        {"100%.png", 1, 1, "100%.png"},
        {"100%.png", 2, 3, "100%-0002.png"},
        {"%s.png", 2, 3, "%s-0002.png"},
        {"%99d", 2, 3, "%99d-0002"},
        {"a%", 1, 1, "a%"},
        {"a%0", 1, 1, "a%0"},
        {"a%04", 1, 1, "a%04"},
        {"50%-%03d%n.png", 2, 3, "50%-002%n.png"},
    });
}

TEST(OutputTest, RefusesTwoPlacesForTheNumber)
{
    for (char const* const path : {"%d%d.png", "%d-%04d.png", "%01d/%d"}) {
        EXPECT_THROW(Iacq::numberedPath(path, 1, 2), Iacq::Failure) << path;
    }
}

TEST(OutputTest, TakesTheFormatThatIsNamedOrFollowsFromTheExtension)
{
    EXPECT_EQ(Iacq::outputFormatOf("", "a.PNG"), Iacq::OutputFormat::Png);
    EXPECT_EQ(Iacq::outputFormatOf("", "x/a.ppm"), Iacq::OutputFormat::Ppm);
    EXPECT_EQ(Iacq::outputFormatOf("raw", "a.png"), Iacq::OutputFormat::Raw);
    EXPECT_THROW(Iacq::outputFormatOf("", "a.gif"), Iacq::Failure);
    EXPECT_THROW(Iacq::outputFormatOf("", "dir.png/a"), Iacq::Failure);
    EXPECT_THROW(Iacq::outputFormatOf("", "-"), Iacq::Failure);
}

std::string faultOf(std::string const& named, std::string const& path)
{
    try {
        Iacq::outputFormatOf(named, path);
    } catch (Iacq::Failure const& failure) {
        return failure.what();
    }
    return "";
}

TEST(OutputTest, BlamesAFormatOnTheOptionOrElseOnTheName)
{
    EXPECT_EQ(faultOf("jpeg", "a.png"), "--output-format is 'jpeg', but has to be png, ppm or raw");
    EXPECT_EQ(faultOf("", "a.gif"), "cannot tell the output format from 'a.gif'; use "
                                    "--output-format png, ppm or raw");
}

} // namespace
