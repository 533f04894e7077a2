// The post-parse step: -a, -d, -s in that order, the saved server state, and
// the block dumps.
#include <gtest/gtest.h>

#include "camera.h"

using shm::Slot;
using testkit::Camera;
using testkit::hasLine;
using testkit::splitLines;

namespace {

TEST(PostParse, RunsPasswordThenDebugThenServerState) {
  Camera cam;
  cam.startServer({{Slot::SERVER_STATE, 1}});
  testkit::RunResult r = cam.run({"-s", "0", "-d", "1", "-a", "1"});
  EXPECT_EQ(r.out, "Onvif check Password!\n[MAIN]ONVIF DEBUG MODE OPEN!!!\nSet ONVIF server stop.\n");
  EXPECT_EQ(cam.slot(Slot::SERVER_STATE), 0);
  EXPECT_EQ(cam.slot(Slot::ONVIF_DEBUG_LOG), 1);
}

TEST(PostParse, ServerStateAndDebugRequests) {
  struct Case {
    const char* option;
    const char* request;
    Slot slot;
    int before;
    const char* out;
    int after;
  } cases[] = {
      {"-s", "0", Slot::SERVER_STATE, 1, "Set ONVIF server stop.\n", 0},
      {"-s", "0", Slot::SERVER_STATE, 0, "Onvif Server is already stop.\n", 0},
      {"-s", "0", Slot::SERVER_STATE, 7, "Set ONVIF server stop.\n", 0},
      {"-s", "1", Slot::SERVER_STATE, 1, "Set ONVIF server Start.\n", 1},
      {"-s", "1", Slot::SERVER_STATE, 0, "Set ONVIF server Start.\n", 1},
      {"-d", "1", Slot::ONVIF_DEBUG_LOG, 0, "[MAIN]ONVIF DEBUG MODE OPEN!!!\n", 1},
      {"-d", "2", Slot::ONVIF_DEBUG_LOG, 1, "[MAIN]ONVIF DEBUG MODE CLOSE!!!\n", 0},
      {"-d", "0", Slot::ONVIF_DEBUG_LOG, 5, "", 5},
  };
  Camera cam;
  cam.startServer();
  for (const Case& c : cases) {
    cam.setSlot(c.slot, c.before);
    EXPECT_EQ(cam.run({c.option, c.request}).out, c.out) << c.option << c.request;
    EXPECT_EQ(cam.slot(c.slot), c.after) << c.option << c.request;
  }
}

TEST(PostParse, FullDumpShowsSwitchesLiveSlotsAndEveryNamedSlot) {
  Camera cam;
  cam.startServer({{Slot::ONVIF_BRAND, 40}, {Slot::ONVIF_DEBUG_LOG, 1}, {Slot::DEBUG_CELL_MOTION, 3},
                   {Slot::ONVIF_DEBUG_LOG_USE, 0}, {Slot::ONVIF_SET_SYSTEM_DATE_AND_TIME, -9}});
  std::vector<std::string> out = splitLines(cam.run({"-s", "2"}).out);
  ASSERT_GT(out.size(), 200u);
  EXPECT_EQ(out[0], "************ Big Change ************");
  EXPECT_EQ(out[1], "---DEBUG_MODE\t\t\t\t\t=0");
  EXPECT_TRUE(hasLine(out, "---ONVIF_PROFILE_G\t\t\t\t=0"));
  EXPECT_TRUE(hasLine(out, "------PROFILE_G_BRAND\t\t\t\t=3"));
  EXPECT_TRUE(hasLine(out, "---PASS_ONVIF_TEST_TOOL_V13.06\t\t\t=1"));
  EXPECT_TRUE(hasLine(out, "*(shm + ONVIF_DEBUG_LOG)\t\t\t=1"));
  EXPECT_TRUE(hasLine(out, "*(shm + DEBUG_CELL_MOTION)\t\t\t=3"));
  EXPECT_TRUE(hasLine(out, "************ THREAD Created ************"));
  EXPECT_TRUE(hasLine(out, "---CREATE_THREAD6_RecordingSearch\t\t=0"));
  EXPECT_TRUE(hasLine(out, "************ Current shm memory of onvifServer ************"));
  EXPECT_TRUE(hasLine(out, "*(shm + SERVER_STATE\t\t\t=1)\t=0"));
  EXPECT_TRUE(hasLine(out, "*(shm + ONVIF_BRAND\t\t\t=2)\t=40"));
  EXPECT_TRUE(hasLine(out, "*(shm + ONVIF_SET_SYSTEM_DATE_AND_TIME\t=931)\t=-9"));
  EXPECT_EQ(out.back(), "*(shm + ONVIF_DEBUG_LOG_USE\t\t=999)\t=0");
  std::size_t slotLines = 0;
  for (const std::string& l : out)
    if (l.rfind("*(shm + ", 0) == 0 && l.find(")\t=") != std::string::npos) ++slotLines;
  EXPECT_EQ(slotLines, shm::kSlotNameCount);
}

TEST(PostParse, SubscriptionDump) {
  Camera cam;
  cam.startServer();
  EXPECT_EQ(cam.run({"-s", "5"}).out, "NO EVENT Subscribe fot all 8 Clients!!!\n");

  // Record 1 (slots 102..118) with index 2, record 3 (136..152) with index 3.
  for (int f = 0; f < 17; ++f) cam.setSlot(102 + f, 100 + f);
  cam.setSlot(102, 2);
  cam.setSlot(136, 3);
  cam.setSlot(Slot::ONVIF_SEND_NOTIFY, 9);
  std::vector<std::string> out = splitLines(cam.run({"-s", "5"}).out);
  ASSERT_EQ(out.size(), 17u + 1u + 1u + 17u + 1u);
  EXPECT_EQ(out[0], "*(shm + EVENT_INDEX\t\t=102)\t=2");
  EXPECT_EQ(out[1], "*(shm + EVENT_IP_ADDRESS_1\t=103)\t=101");
  EXPECT_EQ(out[8], "*(shm + EVENT_TERMINAION_YEAR\t=110)\t=108");
  EXPECT_EQ(out[16], "*(shm + EVENT_FIRST_TOPIC_2\t=118)\t=116");
  EXPECT_EQ(out[17], "*(shm + ONVIF_SEND_NOTIFY\t=20)\t=9");
  EXPECT_EQ(out[18], std::string(47, '='));
  EXPECT_EQ(out[19], "*(shm + EVENT_INDEX\t\t=136)\t=3");
  EXPECT_EQ(out[36], std::string(47, '='));
}

TEST(PostParse, ImageQualityFlags) {
  Camera cam;
  cam.startServer({{Slot::ONVIF_SIGNALLOSS, 1}, {Slot::ONVIF_VIDEOSHADING, 2}, {Slot::ONVIF_IMAGETOOBLURRY, 3},
                   {Slot::ONVIF_COLORCAST, 4}, {Slot::ONVIF_IMAGETOOBRIGHT, 5}, {Slot::ONVIF_IMAGETOODARK, 6}});
  EXPECT_EQ(cam.run({"-s", "9"}).out,
            "[1] *(shm + ONVIF_SIGNALLOSS)\t\t=1\n[2] *(shm + ONVIF_VIDEOSHADING)\t\t=2\n"
            "[3] *(shm + ONVIF_IMAGETOOBLURRY)\t=3\n[4] *(shm + ONVIF_COLORCAST)\t\t=4\n"
            "[5] *(shm + ONVIF_IMAGETOOBRIGHT)\t=5\n[6] *(shm + ONVIF_IMAGETOODARK)\t\t=6\n");
}

}  // namespace
