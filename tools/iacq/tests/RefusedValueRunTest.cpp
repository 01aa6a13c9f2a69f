// SPDX-License-Identifier: MIT
#include "ProgramRun.h"

#include <gmock/gmock.h>

namespace
{

using testing::HasSubstr;
using testing::StartsWith;

Words const allControls = {"--model", "all-controls"};

struct Refused
{
    char const* assignment;
    char const* reason;
    int status;
};

void PrintTo(Refused const& refused, std::ostream* stream)
{
    *stream << refused.assignment;
}

class RefusedValueRunTest : public testing::TestWithParam<Refused>
{
};

TEST_P(RefusedValueRunTest, SaysWhy)
{
    ProgramRun const run = runIacq({"set", "0", GetParam().assignment}, allControls);
    EXPECT_EQ(run.status, GetParam().status);
    EXPECT_THAT(run.errors, StartsWith("iacq: "));
    EXPECT_THAT(run.errors, HasSubstr(GetParam().reason));
}

INSTANTIATE_TEST_SUITE_P(
    Values, RefusedValueRunTest,
    testing::Values(Refused{"integer=101", "101 is outside -100..100", 1},
                    Refused{"integer=many", "'many' is no number", 1},
                    Refused{"integer=99999999999", "is outside -100..100", 1},
                    Refused{"unsigned_8_bits=256", "256 is outside 0..255", 1},
                    Refused{"read_only_integer=3", "read-only", 1},
                    Refused{"disabled_integer=3", "disabled", 1},
                    Refused{"inactive_integer=3", "inactive", 1},
                    Refused{"grabbed_integer=3", "grabbed by another program", 1},
                    Refused{"boolean=maybe", "neither on nor off", 1},
                    Refused{"menu=Second", "no such item: 'Second'", 1},
                    Refused{"menu=3", "no such item: '3'", 1},
                    Refused{"integer_menu=9", "no such item", 1},
                    Refused{"string=much too long for it", "its length 20 is outside 2..8", 1},
                    Refused{"bitmask=-1", "no mask", 1}, Refused{"integer", "needs a value", 1},
                    Refused{"button=1", "give its name alone", 1},
                    Refused{"no_such=1", "find control 'no_such': ", 2}));

} // namespace
