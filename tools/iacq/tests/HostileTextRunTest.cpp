// SPDX-License-Identifier: MIT
#include "ProgramRun.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace
{

using Json = nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

TEST(HostileTextRunTest, DoesNotLetACameraSteerTheTerminal)
{
    ScratchFolder const folder;
    ProgramRun const run =
        runIacq({"list"}, {"--config", folder.write("camera.json", R"({"cameras": [{
                              "node": "/dev/video0", "name": "Evil \u001b[2J",
                              "usb": {"port": "1-1"}}]})")});
    EXPECT_THAT(run.output, StartsWith("0: Evil ?[2J\n    node /dev/video0, driver uvcvideo"));
}

/// A camera in whose texts everything tries to make lines of its own or to steer the terminal.
Words const hostileCamera(ScratchFolder const& folder)
{
    return {"--config", folder.write("camera.json", R"({"cameras": [{
        "node": "/dev/video0", "name": "Evil\n1: Fake\u009b2J\u202e", "driver": "d\u007fd",
        "busInfo": "usb\u2028-1",
        "usb": {"port": "1-1", "serial": "S\n7", "manufacturer": "M\u200f"},
        "formats": [{"pixelFormat": "YU\nV", "description": "Y\u009bU",
                     "sizes": [{"width": 64, "height": 48}]}],
        "controls": [
            {"type": "menu", "id": "0x00980900", "name": "Me\nnu\u2066", "maximum": 1,
             "items": [{"index": 0, "label": "A\n9: B"}, {"index": 1, "label": "C\u0085"}]},
            {"type": "string", "id": "0x00980901", "name": "Te\rxt", "maximum": 20,
             "text": "v\n\u061cw"}]}]})")};
}

TEST(HostileTextRunTest, StayInTheirLines)
{
    ScratchFolder const folder;
    Words const camera = hostileCamera(folder);
    EXPECT_EQ(runIacq({"list"}, camera).output,
              "0: Evil?1: Fake?2J?\n"
              "    node /dev/video0, driver d?d 6.1.0, bus usb?-1\n"
              "    USB 1d6b:0104, revision 2.00, speed high, manufacturer M?, serial S?7\n");
    EXPECT_EQ(runIacq({"get", "0", "me_nu", "te_xt"}, camera).output,
              "Me?nu?: 0 (A?9: B)\nTe?xt: v??w\n");
    ProgramRun const run = runIacq({"show", "0"}, camera);
    EXPECT_EQ(run.output.find_first_of("\r\x1b\x7f"), std::string::npos) << run.output;
    for (char const* const text : {"Evil?1: Fake?2J?\n", "    YU?V  Y?U\n", "current: YU?V 64x48",
                                   "\n        0: A?9: B\n        1: C?\n", "  value v??w  "}) {
        EXPECT_THAT(run.output, HasSubstr(text));
    }
}

TEST(HostileTextRunTest, StayInTheLineOfAnError)
{
    ScratchFolder const folder;
    Words const camera = hostileCamera(folder);
    EXPECT_EQ(runIacq({"set", "0", "me_nu=2"}, camera).errors,
              "iacq: set Me?nu? to '2': /dev/video0: no such item: '2' (it has 'A?9: B', 'C?')\n");
    EXPECT_EQ(runIacq({"show", "x\ny\xc2\x9bz"}, camera).errors,
              "iacq: find camera 'x?y?z': no camera fits (there are /dev/video0 'Evil?1: Fake?2J?' "
              "serial:S?7 port:1-1)\n");
    EXPECT_EQ(runIacq({"capture", "0", "-o", "a.raw", "--format", "ABCD"}, camera).errors,
              "iacq: select ABCD: the camera has no format 'ABCD'; it has YU?V\n");
}

TEST(HostileTextRunTest, AreKeptInJsonEscaped)
{
    ScratchFolder const folder;
    Words const camera = hostileCamera(folder);
    ProgramRun const run = runIacq({"list", "--json"}, camera);
    EXPECT_EQ(Json::parse(run.output)[0].at("name"), "Evil\n1: Fake\u009b2J\u202e");
    EXPECT_THAT(run.output, HasSubstr("Evil\\n1: Fake\\u009b2J\\u202e"));
    Json const control = Json::parse(runIacq({"get", "0", "me_nu", "--json"}, camera).output)[0];
    EXPECT_EQ(control.at("items"), Json({"A\n9: B", "C\u0085"}));
}

} // namespace
