// The post-parse step: -a, -d, -s in that order, the saved server state, and
// the dumps of the block (-s 2, 5, 9) and of the auxiliary segments (-s 6..19).
#include <gtest/gtest.h>

#include "transcript.h"

using shm::Slot;

namespace {

TEST(PostParse, ServerStateAndDebugRequests) {
  const Slot state = Slot::SERVER_STATE, debug = Slot::ONVIF_DEBUG_LOG;
  testkit::Camera cam;
  cam.startServer();
  testkit::expectGolden(testkit::transcript(
      cam, {{"Password, then debug, then the server state", "-s 0 -d 1 -a 1", {{state, 1}}},
            {"Stop a running server", "-s 0", {{state, 1}}},
            {"Stop a stopped server", "-s 0", {{state, 0}}},
            {"Stop from any other state", "-s 0", {{state, 7}}},
            {"Start a running server", "-s 1", {{state, 1}}},
            {"Start a stopped server", "-s 1", {{state, 0}}},
            {"Debug on", "-d 1", {{debug, 0}}},
            {"Debug off", "-d 2", {{debug, 1}}},
            {"Debug 0 does nothing", "-d 0", {{debug, 5}}}}));
}

// The full dump shows the switches, the live slots and every named slot;
// the subscription dump the records with an index; -s 9 the image flags.
TEST(PostParse, BlockDumps) {
  testkit::Camera cam;
  cam.startServer({{Slot::ONVIF_BRAND, 40},
                   {Slot::ONVIF_DEBUG_LOG, 1},
                   {Slot::DEBUG_CELL_MOTION, 3},
                   {Slot::ONVIF_SET_SYSTEM_DATE_AND_TIME, -9},
                   {Slot::ONVIF_SIGNALLOSS, 1},
                   {Slot::ONVIF_VIDEOSHADING, 2},
                   {Slot::ONVIF_IMAGETOOBLURRY, 3},
                   {Slot::ONVIF_COLORCAST, 4},
                   {Slot::ONVIF_IMAGETOOBRIGHT, 5},
                   {Slot::ONVIF_IMAGETOODARK, 6}});
  std::string text = testkit::transcript(
      cam, {{"The full dump", "-s 2"}, {"No subscriptions", "-s 5"}, {"Image flags", "-s 9"}});
  // Record 1 (slots 102..118) with index 2, record 3 (136..152) with index 3.
  for (int f = 0; f < 17; ++f) cam.setSlot(102 + f, 100 + f);
  cam.setSlot(102, 2);
  cam.setSlot(136, 3);
  text += testkit::record(cam, {"Two subscriptions", "-s 5", {{Slot::ONVIF_SEND_NOTIFY, 9}}});
  testkit::expectGolden(text);
}

TEST(PostParse, SegmentDumps) {
  testkit::FixedKeyLock lock;
  testkit::Camera cam;
  cam.startServer();
  cam.runShm({"stream-remove"});
  std::string text = testkit::transcript(cam, {{"No video analytics segment", "-s 6"},
                                               {"No streaming server segment", "-s 8"},
                                               {"No wearable hub segment", "-s 10"}});
  for (const char* seg : {"va", "record", "wearable"})
    ASSERT_EQ(cam.runShm({"seg-create", seg}).status, 0);
  ASSERT_EQ(cam.runShm({"stream-create"}).status, 0);
  for (testkit::Lines set : {testkit::Lines{"va", "119", "-2"},
                             {"record", "0", "65"},
                             {"stream", "1", "2"},
                             {"wearable", "16", "11"},
                             {"wearable", "271", "99"}}) {
    set.insert(set.begin(), "seg-set");
    cam.runShm(set);
  }
  text += testkit::transcript(cam, {{"Video analytics", "-s 6"},
                                    {"Recording", "-s 7"},
                                    {"Streaming server", "-s 8"},
                                    {"Every wearable hub entry", "-s 11"},
                                    {"Wearable hub entry 7", "-s 19"}});
  for (const char* seg : {"va", "record", "wearable"}) cam.runShm({"seg-remove", seg});
  cam.runShm({"stream-remove"});
  testkit::expectGolden(text);
}

}  // namespace
