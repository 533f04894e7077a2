// The frame around sync commands: the protect flag, the command number, the
// DebugLog line, and the commands that only raise slots.
#include <gtest/gtest.h>

#include <regex>

#include "camera.h"

using shm::Slot;
using testkit::Camera;

namespace {

std::vector<std::string> debugLog(const Camera& cam) { return cam.lines("/tmp/onvif/DebugLog"); }

TEST(SyncFrame, SlotCommandsRaiseTheirSlots) {
  struct Case {
    const char* number;
    std::vector<std::pair<int, int>> slots;  // index, value after the run
    const char* out;
  } cases[] = {
      {"17", {{75, 17}, {800, 4}, {815, 0}}, ""},
      {"27", {{75, 27}, {76, 0}, {826, 0}, {815, 1}}, ""},
      {"28", {{75, 28}, {76, 1}, {826, 1}, {815, 1}}, ""},
      {"30", {{75, 30}, {887, 2}, {815, 1}}, ""},
      {"98", {{75, 98}, {1000, 1}, {815, 1}}, "=== Send Discovery MSG ===\n"},
  };
  for (const Case& c : cases) {
    Camera cam;
    cam.startServer({{Slot::WEB_SYNC_PROTECT, 1}, {Slot::ONVIF_AUDIO_SUPPORT, 5},
                     {Slot::ONVIF_AUDIO_OUTPUT_SUPPORT, 5}});
    testkit::RunResult r = cam.run({"-u", c.number});
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, c.out) << c.number;
    for (auto [index, value] : c.slots) EXPECT_EQ(cam.slot(index), value) << c.number << " slot " << index;
  }
}

TEST(SyncFrame, StandardCommandProtectsRecordsAndClears) {
  Camera cam;
  cam.write("/tmp/onvif/DebugLog", "00:00:00 earlier\n");  // appended to, not replaced
  cam.startServer({{Slot::WEB_SYNC_PROTECT, 0}, {Slot::ONVIF_DEBUG_LOG, 1}});
  EXPECT_EQ(cam.run({"-u", "22", "-u", "21"}).status, 0);
  EXPECT_EQ(cam.slot(Slot::ONVIF_CTRL), 21);
  EXPECT_EQ(cam.slot(Slot::WEB_SYNC_PROTECT), 0);
  EXPECT_EQ(cam.slot(Slot::ONVIF_DEBUG_LOG_USE), 0);
  std::vector<std::string> log = debugLog(cam);
  ASSERT_EQ(log.size(), 3u);
  EXPECT_EQ(log[0], "00:00:00 earlier");
  std::regex line("[0-2][0-9]:[0-5][0-9]:[0-6][0-9] (.*)");
  std::smatch m;
  ASSERT_TRUE(std::regex_match(log[1], m, line)) << log[1];
  EXPECT_EQ(m[1], "WEB STA_OnvifSetting_Protect");
  ASSERT_TRUE(std::regex_match(log[2], m, line)) << log[2];
  EXPECT_EQ(m[1], "WEB Update_Brask_OnvifSetting");
}

TEST(SyncFrame, DebugLogOnlyWhenDebugIsOne) {
  struct Case {
    int debug;
    const char* commands[4];
    std::vector<std::string> labels;
  } cases[] = {
      {0, {"-u", "27", "-u", "23"}, {}},
      {2, {"-u", "28", "-u", "30"}, {}},
      {1, {"-u", "17", "-u", "33"}, {}},
      {1, {"-u", "98", "-u", "28"}, {"API Set With Audio"}},
      {1, {"-u", "30", "-u", "27"}, {"Upgrade FW from StartFirmwareUpgrade", "API Set Without Audio"}},
  };
  for (const Case& c : cases) {
    Camera cam;
    cam.startServer({{Slot::ONVIF_DEBUG_LOG, c.debug}});
    cam.run({c.commands[0], c.commands[1], c.commands[2], c.commands[3]});
    std::vector<std::string> log = debugLog(cam);
    ASSERT_EQ(log.size(), c.labels.size()) << c.commands[1];
    for (std::size_t i = 0; i < log.size(); ++i) EXPECT_EQ(log[i].substr(9), c.labels[i]);
  }
}

TEST(SyncFrame, SearchEventWaitsThenClearsTheFlag) {
  Camera cam;
  cam.startServer({{Slot::WEB_SYNC_PROTECT, 0}});
  cam.run({"-u", "33"});
  EXPECT_EQ(cam.slot(Slot::ONVIF_CTRL), 33);
  EXPECT_EQ(cam.slot(Slot::SEARCH_EVENT), 1);
  EXPECT_EQ(cam.slot(Slot::WEB_SYNC_PROTECT), 0);
}

}  // namespace
