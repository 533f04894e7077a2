// Entry and options through the real binary: exit status, messages, and
// what an earlier option already did when a later one fails.
#include <gtest/gtest.h>

#include <regex>

#include "transcript.h"

using shm::Slot;

namespace {

// A bad value fails the run with status 255 before the completion marker is
// set; every accepted value sets it. Each run starts with the marker at 0.
TEST(Options, BadAndAcceptedValues) {
  const char* const bad[] = {"-u 37", "-u 97",  "-u 102", "-s 20",  "-s -1",    "-t 5",  "-r 5",
                             "-p 0",  "-p 257", "-q 0",   "-i 1",   "-a 3",     "-d -1", "-d 3",
                             "-x 1",  "-u",     "-b 0",   "-s 20x", "--bogus=1"};
  const char* const good[] = {"-u 0", "-i 0",  "-s 19", "-p 256x",        "-t 2",
                              "-r 0", "-a 2x", "-d 0",  "--onvif_ctrl 4", "not-an-option"};
  const char* const longer[] = {"--onvif_conf_update=37", "-u 4294967297", "--server_state=9",
                                "--onvif_conf_update=0"};
  const Slot marker = static_cast<Slot>(shm::kMarkerSlot);
  testkit::Transcript t;
  t.run("No arguments: silently", "");
  for (const char* args : bad) t.run("Bad", args, {{marker, 0}});
  for (const char* args : good) t.run("Accepted", args, {{marker, 0}});
  for (const char* args : longer) t.run("Long names and values", args, {{marker, 0}});
  t.expectGolden();
}

// The reset slot keeps its low byte and the server state is written back.
TEST(Options, EarlierOptionsActAndSlotsAreWrittenBack) {
  const Slot reset = Slot::ONVIF_RESET, state = Slot::SERVER_STATE;
  const Slot names = Slot::RECORDING_NAME_FORMAT, motion = Slot::DEBUG_CELL_MOTION;
  testkit::Transcript t;
  t.run("-u 27 acts, -s 0 never does, -u 98 is not reached", "-u 27 -s 0 -u 37x -u 98",
        {{Slot::ONVIF_AUDIO_SUPPORT, 1}, {state, 1}});
  for (int value : {300, 255, -1, 256, 7})
    t.run(testkit::format("Reset %d", value), "-u 0", {{reset, value}, {state, 5}});
  t.run("Recording names with end time", "-t 1", {{names, 7}});
  t.run("Recording names without end time", "-t 2", {{names, 7}});
  t.run("The long name reaches -t only, not its later rows", "--onvif_ctrl=3", {{motion, 7}});
  t.run("Cell motion debugging off", "-t 4", {{motion, 7}});
  t.expectGolden();
}

// Without the block only -i, -t 0 and -r act, after the block's messages,
// and a bad value still fails; a path without a segment is reported by shmget.
TEST(Options, WithoutTheServerOnlyDiagnosticsAct) {
  testkit::Transcript t;
  t.cam().stopServer();
  t.run("Every option is checked", "-u 27 -u 1 -s 3 -t 3 -p 5 -q 5 -a 1 -d 1 -s 2 -i 0 -r 0");
  t.run("A bad value still fails", "-u 37");
  t.run("A path without a segment", "-r 0", {}, {{"/tmp/ONVIF_SHM/onvif", ""}});
  t.expectGolden();
}

// -t 0 prints the UTC time, then the local time of the zone segment's zone
// (after the four lines that there is no server).
TEST(Options, TimePrintUsesTheZoneSegment) {
  const std::regex times(
      "(.*\n){4}UTC time=(.*)\nUTC time YYMMDDhhmmss=[0-9]{12}\nLocal time=(.*)\n");
  std::smatch m;
  testkit::FixedKeyLock lock;
  testkit::Camera cam;
  cam.stopServer();
  cam.runShm({"tz-remove"});
  testkit::RunResult r = cam.run({"-t", "0"});
  EXPECT_TRUE(r.status == 0 && std::regex_match(r.out, m, times)) << r.out;
  EXPECT_EQ(r.err, "shmget: : No such file or directory\n");

  // With the segment, the local time is that of its zone: 14 hours ahead.
  ASSERT_EQ(cam.runShm({"tz-create", "XYZ-14"}).status, 0);
  r = cam.run({"-t", "0"});
  cam.runShm({"tz-remove"});
  ASSERT_TRUE(std::regex_match(r.out, m, times)) << r.out;
  EXPECT_EQ(r.err, "");
  EXPECT_NE(m[2], m[3]);
}

}  // namespace
