// SPDX-License-Identifier: MIT
// What demo.sh decides. Nothing is installed or built for it, and its own virtual camera only says
// that it was called.
#include "ProgramRun.h"

#include <gmock/gmock.h>

namespace
{

using testing::Contains;
using testing::HasSubstr;

constexpr char arrangement[] = R"(
set -e
cd "$1"
mkdir -p scripts bin build/demo/tools/iacq build/demo/virtualcamera
cp "$2" demo.sh
ln -s "$3" build/demo/tools/iacq/iacq
touch build/demo/build.ninja
printf '#!/bin/sh\n' | tee scripts/install-packages >bin/cmake
printf '#!/bin/sh\necho "virtual: $*"\ntouch frame.png\n' >build/demo/virtualcamera/with-virtual-camera
chmod +x scripts/install-packages bin/cmake build/demo/virtualcamera/with-virtual-camera
PATH=$PWD/bin:$PATH exec ./demo.sh
)";

ProgramRun runDemo(ScratchFolder const& folder, Words const& cameras)
{
    Words command = {WITH_VIRTUAL_CAMERA};
    command.insert(command.end(), cameras.begin(), cameras.end());
    Words const demo = {"--",   "bash",          "-c",        arrangement,
                        "demo", folder.path(""), DEMO_SCRIPT, IACQ_PROGRAM};
    command.insert(command.end(), demo.begin(), demo.end());
    return runProgram(command);
}

TEST(DemoRunTest, UsesTheCameraThatIsAttachedBesideALoopback)
{
    ScratchFolder const folder;
    ProgramRun const run = runDemo(folder, {"--model", "platform", "--model", "webcam"});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_THAT(run.output, HasSubstr("Using the attached camera.\n"));
    EXPECT_THAT(run.output, HasSubstr("\n0: Virtual Webcam\n"));
    EXPECT_EQ(run.output.find("virtual: "), std::string::npos) << run.output;
    EXPECT_THAT(folder.names(), Contains("frame.png"));
}

TEST(DemoRunTest, MakesDoWithAVirtualCameraWhereThereIsOnlyALoopback)
{
    ScratchFolder const folder;
    ProgramRun const run = runDemo(folder, {"--model", "platform"});
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_THAT(run.output, HasSubstr("using the project's virtual camera"));
    EXPECT_THAT(run.output, HasSubstr("\nvirtual: build/demo/tools/iacq/iacq show 0\n"));
}

} // namespace
