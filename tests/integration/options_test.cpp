// Entry and options through the real binary: exit status, messages, and
// what an earlier option already did when a later one fails.
#include <gtest/gtest.h>

#include "camera.h"

using shm::Slot;
using testkit::Camera;
using testkit::hasLine;
using testkit::splitLines;

namespace {

const char* const kClosed[] = {"OnvifCtrl:onvifServer is closed.", "OnvifCtrl:Please start onvifServer first."};

TEST(Options, NoArgumentsExit255Silently) {
  Camera cam;
  cam.startServer();
  testkit::RunResult r = cam.run({});
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(cam.slot(shm::kMarkerSlot), 0);
}

TEST(Options, BadOptionsFailWithStatus255) {
  Camera cam;
  cam.startServer();
  const std::vector<std::vector<std::string>> bad = {
      {"-u", "37"}, {"-u", "97"},  {"-u", "102"}, {"-s", "20"}, {"-s", "-1"}, {"-t", "5"},   {"-r", "5"},
      {"-p", "0"},  {"-p", "257"}, {"-q", "0"},   {"-i", "1"},  {"-a", "3"},  {"-d", "-1"},  {"-x", "1"},
      {"-u"},       {"--bogus=1"}, {"-s", "20x"}, {"-b", "0"},  {"--onvif_conf_update=37"},
  };
  for (const auto& args : bad) {
    cam.setSlot(shm::kMarkerSlot, 0);
    testkit::RunResult r = cam.run(args);
    EXPECT_EQ(r.status, 255) << args[0];
    EXPECT_EQ(r.out, "OnvifCtrl:Parameters initial failed(1).\n") << args[0];
    EXPECT_EQ(cam.slot(shm::kMarkerSlot), 0) << args[0];
  }
}

TEST(Options, AcceptedValuesSucceedAndMarkTheRun) {
  Camera cam;
  cam.startServer();
  const std::vector<std::vector<std::string>> good = {
      {"-u", "0"},  {"-s", "19"}, {"-p", "256x"}, {"-t", "2"}, {"-i", "0"},  {"-r", "0"},
      {"-a", "2x"}, {"-d", "0"},  {"--server_state=9"}, {"--onvif_ctrl", "4"}, {"--onvif_conf_update=0"},
      {"not-an-option"},
  };
  for (const auto& args : good) {
    cam.setSlot(shm::kMarkerSlot, 0);
    testkit::RunResult r = cam.run(args);
    EXPECT_EQ(r.status, 0) << args[0] << r.out;
    EXPECT_EQ(cam.slot(shm::kMarkerSlot), 78) << args[0];
  }
}

TEST(Options, EarlierOptionsKeepTheirEffectWhenALaterOneFails) {
  Camera cam;
  cam.startServer({{Slot::ONVIF_AUDIO_SUPPORT, 1}, {Slot::SERVER_STATE, 1}});
  testkit::RunResult r = cam.run({"-u", "27", "-s", "0", "-u", "37x", "-u", "98"});
  EXPECT_EQ(r.status, 255);
  EXPECT_EQ(r.out, "OnvifCtrl:Parameters initial failed(1).\n");
  EXPECT_EQ(cam.slot(Slot::ONVIF_AUDIO_SUPPORT), 0);  // -u 27 ran
  EXPECT_EQ(cam.slot(Slot::ONVIF_CTRL), 27);           // -u 98 did not
  EXPECT_EQ(cam.slot(shm::kDiscoverySlot), 0);
  EXPECT_EQ(cam.slot(Slot::SERVER_STATE), 1);  // no post-parse step
}

TEST(Options, ResetKeepsItsLowByteAndStateIsWrittenBack) {
  struct Case {
    int reset, after;
  } cases[] = {{300, 44}, {255, 255}, {-1, 255}, {256, 0}, {7, 7}};
  Camera cam;
  cam.startServer();
  for (const Case& c : cases) {
    cam.setSlot(Slot::ONVIF_RESET, c.reset);
    cam.setSlot(Slot::SERVER_STATE, 5);
    EXPECT_EQ(cam.run({"-u", "0"}).status, 0);
    EXPECT_EQ(cam.slot(Slot::ONVIF_RESET), c.after) << c.reset;
    EXPECT_EQ(cam.slot(Slot::SERVER_STATE), 5);
  }
}

TEST(Options, WithoutTheServerOnlyDiagnosticsAct) {
  Camera cam;  // no block: /tmp/ONVIF_SHM/onvif does not exist
  testkit::RunResult r = cam.run({"-u", "27", "-u", "1", "-s", "3", "-t", "3", "-p", "5", "-q", "5", "-a", "1",
                                  "-d", "1", "-s", "2", "-i", "0", "-r", "0"});
  EXPECT_EQ(r.status, 0);
  std::vector<std::string> out = splitLines(r.out);
  ASSERT_GE(out.size(), 4u);
  EXPECT_EQ(out[0], "[ONVIFCtrl]getShareMemory: ftok error");
  EXPECT_EQ(out[1], "[ONVIFCtrl]errno=2");
  EXPECT_EQ(out[2], kClosed[0]);
  EXPECT_EQ(out[3], kClosed[1]);
  EXPECT_TRUE(hasLine(out, "ONVIF_Versions=2018 0208_01"));
  EXPECT_EQ(std::vector<std::string>(out.end() - 4, out.end()),
            (std::vector<std::string>{"---r1: start O1 recording.", "---r2: stop O1 recording.",
                                      "---r3: GetRecordingSummary.", "---r4: Read DB file."}));
  EXPECT_FALSE(hasLine(out, "Onvif check Password!"));
  EXPECT_EQ(out.size(), 4u + 2u + 4u);
  EXPECT_TRUE(cam.shellTrace().empty());
  EXPECT_FALSE(cam.exists("/tmp/onvif_error"));

  // A bad value still fails without the server.
  r = cam.run({"-u", "37"});
  EXPECT_EQ(r.status, 255);
  EXPECT_TRUE(hasLine(splitLines(r.out), "OnvifCtrl:Parameters initial failed(1)."));
}

TEST(Options, ServerPathWithoutSegmentReportsShmget) {
  Camera cam;
  cam.write("/tmp/ONVIF_SHM/onvif", "");
  testkit::RunResult r = cam.run({"-i", "0"});
  EXPECT_EQ(r.status, 0);
  std::vector<std::string> out = splitLines(r.out);
  ASSERT_EQ(out.size(), 6u);
  EXPECT_EQ(out[0], "[ONVIFCtrl]getShareMemory: shmget error");
  EXPECT_EQ(out[1], "[ONVIFCtrl]errno=2");
  EXPECT_EQ(out[2], kClosed[0]);
}

TEST(Options, VersionLines) {
  Camera cam;
  cam.startServer();
  std::vector<std::string> out = splitLines(cam.run({"-i", "0"}).out);
  ASSERT_EQ(out.size(), 2u);
  EXPECT_EQ(out[0], "ONVIF_Versions=2018 0208_01");
  EXPECT_EQ(out[1].rfind("ONVIFCTRL_BuildTime=", 0), 0u);
  EXPECT_EQ(out[1].size(), std::string("ONVIFCTRL_BuildTime=Feb  8 2018 17:24:28").size());
}

TEST(Options, TimeAndRecordingSwitches) {
  struct Case {
    std::vector<std::string> args;
    Slot slot;
    int expect;
    const char* out;
  } cases[] = {
      {{"-t", "1"}, Slot::RECORDING_NAME_FORMAT, 1, "DEBUG : SET RECORDING NAME WITH ENDTIME.\n"},
      {{"-t", "2"}, Slot::RECORDING_NAME_FORMAT, 0, "DEBUG : SET RECORDING NAME WITHOUT ENDTIME.\n"},
      // The long name "onvif_ctrl" reaches -t only, not its later rows.
      {{"--onvif_ctrl=3"}, Slot::DEBUG_CELL_MOTION, 1,
       "DEBUG : SET CELL MOTION ON\nFILE AT : /tmp/onvif/debug_CM.txt\n"},
      {{"-t", "4"}, Slot::DEBUG_CELL_MOTION, 0, "DEBUG : SET CELL MOTION OFF\n"},
  };
  Camera cam;
  cam.startServer({{Slot::RECORDING_NAME_FORMAT, 7}, {Slot::DEBUG_CELL_MOTION, 7}});
  for (const Case& c : cases) {
    testkit::RunResult r = cam.run(c.args);
    EXPECT_EQ(r.out, c.out);
    EXPECT_EQ(cam.slot(c.slot), c.expect) << c.args[0];
  }
  EXPECT_EQ(cam.slot(723), 0);
}

TEST(Options, TimePrintUsesTheZoneSegment) {
  testkit::FixedKeyLock lock;
  Camera cam;
  cam.runShm({"tz-remove"});
  testkit::RunResult r = cam.run({"-t", "0"});
  EXPECT_EQ(r.status, 0);
  std::vector<std::string> out = splitLines(r.out);
  ASSERT_EQ(out.size(), 3u + 4u);  // after the four no-server lines
  EXPECT_EQ(out[4].rfind("UTC time=", 0), 0u);
  EXPECT_EQ(out[5].rfind("UTC time YYMMDDhhmmss=", 0), 0u);
  EXPECT_EQ(out[5].size(), std::string("UTC time YYMMDDhhmmss=").size() + 12);
  EXPECT_EQ(out[6].rfind("Local time=", 0), 0u);
  EXPECT_EQ(r.err, "shmget: : No such file or directory\n");

  // With the segment, the local time is that of its zone: 14 hours ahead.
  ASSERT_EQ(cam.runShm({"tz-create", "XYZ-14"}).status, 0);
  r = cam.run({"-t", "0"});
  cam.runShm({"tz-remove"});
  out = splitLines(r.out);
  ASSERT_EQ(out.size(), 7u);
  EXPECT_EQ(r.err, "");
  EXPECT_NE(out[6].substr(std::string("Local time=").size()), out[4].substr(std::string("UTC time=").size()));
}

}  // namespace
