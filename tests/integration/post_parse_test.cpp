// The post-parse step: -a, -d, -s in that order, the saved server state, and
// the dumps of the block (-s 2, 5, 9) and of the auxiliary segments (-s 6..19).
#include <gtest/gtest.h>

#include "transcript.h"

using shm::Slot;

namespace {

TEST(PostParse, ServerStateAndDebugRequests) {
  const Slot state = Slot::SERVER_STATE, debug = Slot::ONVIF_DEBUG_LOG;
  testkit::Transcript t;
  t.run("Password, then debug, then the server state", "-s 0 -d 1 -a 1", {{state, 1}});
  t.run("Stop a running server", "-s 0", {{state, 1}});
  t.run("Stop a stopped server", "-s 0", {{state, 0}});
  t.run("Stop from any other state", "-s 0", {{state, 7}});
  t.run("Start a running server", "-s 1", {{state, 1}});
  t.run("Start a stopped server", "-s 1", {{state, 0}});
  t.run("Debug on", "-d 1", {{debug, 0}});
  t.run("Debug off", "-d 2", {{debug, 1}});
  t.run("Debug 0 does nothing", "-d 0", {{debug, 5}});
  t.expectGolden();
}

// The full dump shows the switches, the live slots and every named slot;
// the subscription dump the records with an index; -s 9 the image flags.
TEST(PostParse, BlockDumps) {
  testkit::Transcript t;
  t.run("The full dump", "-s 2",
        {{Slot::ONVIF_BRAND, 40},
         {Slot::ONVIF_DEBUG_LOG, 1},
         {Slot::DEBUG_CELL_MOTION, 3},
         {Slot::ONVIF_SET_SYSTEM_DATE_AND_TIME, -9}});
  t.run("No subscriptions", "-s 5");
  t.run("Image flags", "-s 9",
        {{Slot::ONVIF_SIGNALLOSS, 1},
         {Slot::ONVIF_VIDEOSHADING, 2},
         {Slot::ONVIF_IMAGETOOBLURRY, 3},
         {Slot::ONVIF_COLORCAST, 4},
         {Slot::ONVIF_IMAGETOOBRIGHT, 5},
         {Slot::ONVIF_IMAGETOODARK, 6}});
  // Record 1 (slots 102..118) with index 2, record 3 (136..152) with index 3.
  for (int f = 0; f < 17; ++f) t.cam().setSlot(102 + f, 100 + f);
  t.cam().setSlot(102, 2);
  t.cam().setSlot(136, 3);
  t.run("Two subscriptions", "-s 5", {{Slot::ONVIF_SEND_NOTIFY, 9}});
  t.expectGolden();
}

TEST(PostParse, SegmentDumps) {
  testkit::FixedKeyLock lock;
  testkit::Transcript t;
  t.cam().runShm({"stream-remove"});  // one an interrupted run left
  t.run("No video analytics segment", "-s 6");
  t.run("No streaming server segment", "-s 8");
  t.run("No wearable hub segment", "-s 10");
  for (const char* command :
       {"seg-create va", "seg-create record", "seg-create wearable", "stream-create",
        "seg-set va 119 -2", "seg-set record 0 65", "seg-set stream 1 2", "seg-set wearable 16 11",
        "seg-set wearable 271 99"})
    t.run("Segments", testkit::format("onvif-shm %s", command));
  t.run("Video analytics", "-s 6");
  t.run("Recording", "-s 7");
  t.run("Streaming server", "-s 8");
  t.run("Every wearable hub entry", "-s 11");
  t.run("Wearable hub entry 7", "-s 19");
  for (const char* command :
       {"seg-remove va", "seg-remove record", "seg-remove wearable", "stream-remove"})
    t.run("Removed", testkit::format("onvif-shm %s", command));
  t.expectGolden();
}

}  // namespace
